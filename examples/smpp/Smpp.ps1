# Smpp.ps1 send 127.0.0.1 2775 user password +31612345678 "The text" | receive 127.0.0.1 2775 user password [seconds]
param([string]$Job, [string]$Server, [int]$Port, [string]$User, [string]$Password, [string]$First = '2', [string]$Text)

$smpp = New-Object -ComObject Quorvane.SmsProtocolSmpp
$smpp.Server = $Server
$smpp.ServerPort = $Port
$smpp.SystemID = $User
$smpp.SystemPassword = $Password

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
