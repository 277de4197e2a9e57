# Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md).
param([string]$Provider, [string]$Recipient, [string]$Text, [string]$Picture)

if (-not $Picture) {
    'Mm7.ps1 provider.ini +31612345678 "The text" picture.jpg'
    exit 2
}

function Check($object) {
    if ($object.LastError -ne 0) { throw "$($object.LastError) $($object.GetErrorDescription($object.LastError))" }
}

$slide = New-Object -ComObject Quorvane.MmsSlide
$slide.AddText($Text)
$slide.AddAttachment($Picture)
Check $slide
$message = New-Object -ComObject Quorvane.MmsMessage
$message.Subject = 'A picture'
$message.AddRecipient($Recipient)
Check $message
$message.AddSlide([ref]$slide)

$mm7 = New-Object -ComObject Quorvane.MmsProtocolMm7
$mm7.ProviderLoadConfig($Provider)
Check $mm7
$mm7.Send([ref]$message)
if ($mm7.LastError -ne 0 -and $mm7.ProviderResponse) { "The centre said: $($mm7.ProviderResponse)" }
Check $mm7
"Sent, message id $($mm7.MessageId)"
