# Gsm.ps1 send COM5 +31612345678 "The text" | receive COM5 | report COM5 +31612345678 "The text" | pin COM5 1234
param([string]$Job, [string]$Device, [string]$First, [string]$Text)

$gsm = New-Object -ComObject Quorvane.SmsProtocolGsm
$gsm.Device = $Device

function Check {
    if ($gsm.LastError -ne 0) { throw "$($gsm.LastError) $($gsm.GetErrorDescription($gsm.LastError))" }
}

function Send([bool]$WithReport) {
    $message = New-Object -ComObject Quorvane.SmsMessage
    $message.Recipient = $First
    $message.Data = $Text
    $message.Format = 22  # asMESSAGEFORMAT_UNICODE_MULTIPART
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
