# Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became of it.
param([string]$Server, [int]$Port, [string]$User, [string]$Password, [string]$File, [string]$Text, [int]$Rate = 10)

if (-not $Text) {
    'Bulk.ps1 127.0.0.1 2775 user password numbers.txt "The text" [messages per second]'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$constants = New-Object -ComObject Quorvane.SmsConstants
$smpp = New-Object -ComObject Quorvane.SmsProtocolSmpp
$smpp.Server = $Server
$smpp.ServerPort = $Port
$smpp.SystemID = $User
$smpp.SystemPassword = $Password
$smpp.SystemCharSet = $constants.asSMPPCHARSET_GSM
$smpp.SystemThroughput = $Rate
$message = New-Object -ComObject Quorvane.SmsMessage
$message.Data = $Text
$message.Format = if ($Text -cmatch $beyondGsm) { $constants.asMESSAGEFORMAT_UNICODE_MULTIPART }
                  else { $constants.asMESSAGEFORMAT_TEXT_MULTIPART }
$message.RequestDeliveryStatus = 1

function Check([string]$What) {
    if ($smpp.LastError -eq 0) { return }
    "$What failed: $($smpp.LastError) $($smpp.GetErrorDescription($smpp.LastError))" | Out-Host
    exit 1
}

function Get-Status([string]$Reference) {
    $smpp.QueryStatus($Reference, 0)
    Check 'QueryStatus'
}

$recipients = Get-Content -ErrorAction Stop $File | ForEach-Object { $_.Trim() } | Where-Object { $_ }
$smpp.Connect()
Check 'Connect'
$sent = New-Object System.Collections.ArrayList
$refused = 0
$clock = [Diagnostics.Stopwatch]::StartNew()
foreach ($recipient in $recipients) {
    $message.Recipient = $recipient
    $reference = $smpp.Send([ref]$message)
    if ($smpp.LastError -eq 0) {
        $sent.Add($reference) | Out-Null
    } else {
        "$recipient not sent: $($smpp.LastError) $($smpp.GetErrorDescription($smpp.LastError))"
        $refused++
    }
}

# Send only queues. The server has answered the last message when its status is no longer this one.
while ($sent.Count -and (Get-Status $sent[-1]).Status -eq $constants.asDELIVERYSTATUS_SUBMITREQUESTED) { $smpp.Sleep(10) }
$seconds = $clock.Elapsed.TotalSeconds
$timed = if ($sent.Count -gt 1) { $sent.Count - 1 } else { $sent.Count }  # the first goes at once
'Sent {0} in {1:N1} s: {2:N1} messages/s' -f $sent.Count, $seconds, ($timed / $seconds)

# The reports: as long as there are open ones, but no more than a minute.
foreach ($round in 1..120) {
    $pending = 0
    $states = @{ Delivered = 0 }
    foreach ($reference in $sent) {
        $status = Get-Status $reference
        if (-not $status.IsCompleted) { $pending++ }
        $states[$status.StatusDescription]++
    }
    if ($pending -eq 0) { break }
    $smpp.Sleep(500)
}
$smpp.Disconnect()
foreach ($state in $states.Keys) { "${state}: $($states[$state])" }
if ($refused) { "Not sent: $refused" }
if ($states['Delivered'] -lt $sent.Count + $refused) { exit 1 }
"Done: all $($states['Delivered']) delivered"
