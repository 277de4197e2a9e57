# SMS through a GSM modem.
param([string]$Job, [string]$Device, [string]$First, [string]$Text)

$last = @{ send = $Text; receive = $Device; report = $Text; pin = $First }  # the last argument that each needs
if (-not $last[$Job]) {
    'Gsm.ps1 send COM5 +31612345678 "The text" | receive COM5 | ' +
    'report COM5 +31612345678 "The text" | pin COM5 1234'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$gsm = New-Object -ComObject Quorvane.SmsProtocolGsm
$gsm.Device = $Device

function Check {
    if ($gsm.LastError -ne 0) { throw "$($gsm.LastError) $($gsm.GetErrorDescription($gsm.LastError))" }
}

function Send([bool]$WithReport) {
    $message = New-Object -ComObject Quorvane.SmsMessage
    $message.Recipient = $First
    $message.Data = $Text
    $message.Format = if ($Text -cmatch $beyondGsm) { 22 } else { 2 }  # Unicode or text, split when long
    $message.RequestDeliveryStatus = [int]$WithReport
    $reference = $gsm.Send([ref]$message)
    Check
    "Sent, reference $reference" | Out-Host
    $reference
}

switch ($Job) {
    'send' { Send $false | Out-Null }
    'receive' {
        $gsm.Receive() | Out-Null
        Check
        $message = $gsm.GetFirstMessage()
        while ($gsm.LastError -eq 0) {
            "From $($message.Sender): $($message.Data)"
            $message = $gsm.GetNextMessage()
        }
    }
    'report' {
        $reference = Send $true
        do {
            Start-Sleep -Seconds 11
            $status = $gsm.QueryStatus($reference)
            Check
            "Status: $($status.StatusDescription)"
        } until ($status.IsCompleted)
    }
    'pin' { $gsm.EnterPin($First); Check; 'PIN accepted' }
}
