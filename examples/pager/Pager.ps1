# Sends one page through a paging server.
param([string]$Server, [int]$Port, [string]$Recipient, [string]$Text, [string]$Password)

if (-not $Text) {
    'Pager.ps1 127.0.0.1 4444 5551212 "The text" [password]'
    exit 2
}
$pager = New-Object -ComObject Quorvane.PagerProtocolSnpp
$pager.Server = $Server
$pager.ServerPort = $Port
$pager.ProviderPassword = $Password

$message = New-Object -ComObject Quorvane.PagerMessage
$message.Recipient = $Recipient
$message.Data = $Text
$pager.Send([ref]$message)
if ($pager.LastError -ne 0) { throw "$($pager.LastError) $($pager.GetErrorDescription($pager.LastError))" }
"Answer: $($pager.ProviderResponse)"
