# Sends one message through a dialled provider.
param([string]$Device, [string]$Type, [string]$DialString, [string]$Recipient, [string]$Text, [string]$Password)

if (-not $Text -or $Type -notin 'ucp', 'tap') {
    'Dialup.ps1 COM5 ucp|tap 0201234567 0612345678 "The text" [password]'
    exit 2
}
$constants = New-Object -ComObject Quorvane.SmsConstants
$dialup = New-Object -ComObject Quorvane.SmsProtocolDialup
$dialup.Device = $Device
$dialup.ProviderType = if ($Type -eq 'tap') { $constants.asPROVIDERTYPE_TAP_DEFAULT } else { $constants.asPROVIDERTYPE_UCP }
$dialup.ProviderDialString = $DialString
$dialup.ProviderPassword = $Password

$message = New-Object -ComObject Quorvane.SmsMessage
$message.Recipient = $Recipient
$message.Data = $Text
$dialup.Send([ref]$message)
if ($dialup.LastError -ne 0) { throw "$($dialup.LastError) $($dialup.GetErrorDescription($dialup.LastError))" }
"Answer: $($dialup.ProviderResponse)"
