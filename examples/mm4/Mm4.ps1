# Sends a text and pictures to a peer MMS server.
param([string]$Server, [int]$Port, [string]$Account, [string]$Password, [string]$Recipient, [string]$Domain,
      [string]$Text, [Parameter(ValueFromRemainingArguments)][string[]]$Pictures)

if (-not $Text) {
    'Mm4.ps1 127.0.0.1 2525 account password 31612345678 example.net "The text" picture.jpg ...'
    exit 2
}
function Check($object, $what) {
    if ($object.LastError -ne 0) { throw "$what`: $($object.LastError) $($object.GetErrorDescription($object.LastError))" }
}
$peer = New-Object -ComObject Quorvane.MmsProtocolMm4
$peer.ProviderHost = $Server
$peer.ProviderPort = $Port
$peer.ProviderAccount = $Account
$peer.ProviderPassword = $Password
$peer.ProviderDomain = $Domain

$message = New-Object -ComObject Quorvane.MmsMessage
$message.From = '+31600000001'
$message.Subject = 'Pictures'
$message.AddRecipient($Recipient)
Check $message 'The recipient'

$slide = New-Object -ComObject Quorvane.MmsSlide
$slide.AddText($Text)
foreach ($picture in $Pictures) {
    $slide.AddAttachment($picture)
    Check $slide $picture
}
$message.AddSlide([ref]$slide)
Check $message 'The slide'

$peer.Send([ref]$message)
Check $peer 'Send failed'
"Answer: $($peer.ProviderResponse)"
