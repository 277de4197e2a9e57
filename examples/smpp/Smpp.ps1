# SMS through an SMPP server.
param([string]$Job, [string]$Server, [int]$Port, [string]$User, [string]$Password, [string]$First = '2', [string]$Text)

$usable = switch ($Job) {
    'send' { $Text }
    'receive' { $Password -and $First -match '^[0-9]{1,9}$' }
}
if (-not $usable) {
    'Smpp.ps1 send 127.0.0.1 2775 user password +31612345678 "The text" | ' +
    'receive 127.0.0.1 2775 user password [seconds]'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$smpp = New-Object -ComObject Quorvane.SmsProtocolSmpp
$smpp.Server = $Server
$smpp.ServerPort = $Port
$smpp.SystemID = $User
$smpp.SystemPassword = $Password
$smpp.SystemCharSet = 1  # asSMPPCHARSET_GSM

function Check {
    if ($smpp.LastError -ne 0) { throw "$($smpp.LastError) $($smpp.GetErrorDescription($smpp.LastError))" }
}

$smpp.Connect()
Check
switch ($Job) {
    'send' {
        $message = New-Object -ComObject Quorvane.SmsMessage
        $message.Recipient = $First
        $message.Data = $Text
        $message.Format = if ($Text -cmatch $beyondGsm) { 22 } else { 2 }  # Unicode or text, split when long
        $message.RequestDeliveryStatus = 1
        $reference = $smpp.Send([ref]$message)
        Check
        $status = $smpp.QueryStatus($reference, 1)
        Check
        "Status: $($status.StatusDescription)"
    }
    'receive' {
        for ($i = 0; $i -lt 2 * [int]$First; $i++) {
            $smpp.Sleep(500)
            $message = $smpp.GetFirstMessage()
            while ($smpp.LastError -eq 0) {
                "From $($message.Sender): $($message.Data)"
                $message = $smpp.GetNextMessage()
            }
        }
    }
}
$smpp.Disconnect()
