# Sends a text with a link that the phone offers to open.
param([string]$Device, [string]$Recipient, [string]$Url, [string]$Text)

if (-not $Text) {
    'Push.ps1 COM5 +31612345678 http://www.example.org/ "The text"'
    exit 2
}
if ($Text -match '[^ -~]') {
    'The text is not ASCII: docs/content.md says how other letters go'
    exit 2
}

function Check($Object, [string]$What) {
    if ($Object.LastError -eq 0) { return }
    "$What failed: $($Object.LastError) $($Object.GetErrorDescription($Object.LastError))" | Out-Host
    exit 1
}

$constants = New-Object -ComObject Quorvane.SmsConstants
$content = New-Object -ComObject Quorvane.SmsDataWapPush
$content.ConnectionType = $constants.asWAPPUSH_SERVICE_INDICATION
$content.URL = $Url
$content.Description = $Text
$content.SignalAction = $constants.asWAPPUSHSIGNAL_HIGH
$content.Encode()
Check $content 'Encode'
"Content: $($content.EncodedMessage)"

$message = New-Object -ComObject Quorvane.SmsMessage
$message.Recipient = $Recipient
$message.Data = $content.EncodedMessage
$message.Format = $constants.asMESSAGEFORMAT_DATA_UDH
$gsm = New-Object -ComObject Quorvane.SmsProtocolGsm
$gsm.Device = $Device
$reference = $gsm.Send([ref]$message)
Check $gsm 'Send'
"Sent, reference $reference"
