# Sends one SMS through an HTTP gateway, whose requests two templates describe.
param([string]$Server, [int]$Port, [string]$Recipient, [string]$Text, [string]$Account, [string]$Password)

if (-not $Text) {
    'Gateway.ps1 127.0.0.1 8080 +31612345678 "The text" [account password]'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$gateway = New-Object -ComObject Quorvane.SmsProtocolHttp
$gateway.ProviderHost = $Server
$gateway.ProviderPort = $Port
# The templates: a request as the provider describes it, from behind "host/", with a placeholder where the number and
# where the text stand. What follows "?" is posted. These are for a gateway that answers OK or ERROR; docs/http.md has
# all placeholders.
$gateway.URLText = 'send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%'
$gateway.URLUnicode = 'send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%'
$gateway.ProviderSuccessResponse = 'OK'
$gateway.ProviderErrorResponse = 'ERROR'
$gateway.ProviderWebAccount = $Account
$gateway.ProviderWebPassword = $Password

$message = New-Object -ComObject Quorvane.SmsMessage
$message.Recipient = $Recipient
$message.Data = $Text
$message.Format = if ($Text -cmatch $beyondGsm) { 20 } else { 0 }  # Unicode or text
$gateway.Send([ref]$message)
if ($gateway.LastError -ne 0) { throw "$($gateway.LastError) $($gateway.GetErrorDescription($gateway.LastError))" }
"Answer: $($gateway.ProviderResponse)"
