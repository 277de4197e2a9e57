# Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not confirm within a
# minute, to the next.
param([string]$Device, [string]$Text, [Parameter(ValueFromRemainingArguments)][string[]]$Recipients)

if (-not $Recipients) {
    'Alarm.ps1 COM5 "The text" +31612345678 [+31687654321 ...]'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$constants = New-Object -ComObject Quorvane.SmsConstants
$gsm = New-Object -ComObject Quorvane.SmsProtocolGsm
$gsm.Device = $Device
$message = New-Object -ComObject Quorvane.SmsMessage
$message.Data = $Text
$message.Format = if ($Text -cmatch $beyondGsm) { $constants.asMESSAGEFORMAT_UNICODE_MULTIPART }
                  else { $constants.asMESSAGEFORMAT_TEXT_MULTIPART }
$message.RequestDeliveryStatus = 1

function Test-Failed([string]$What) {
    if ($gsm.LastError -eq 0) { return $false }
    "$What failed: $($gsm.LastError) $($gsm.GetErrorDescription($gsm.LastError))" | Out-Host
    $true
}

function Test-Reached([string]$Recipient) {
    $message.Recipient = $Recipient
    $reference = $gsm.Send([ref]$message)
    if (Test-Failed "Sending to $Recipient") { return $false }
    "Sent to $Recipient, reference $reference" | Out-Host
    foreach ($try in 1..6) {
        $status = $gsm.QueryStatus($reference)
        if (Test-Failed "The report of $Recipient") { return $false }
        "${Recipient}: $($status.StatusDescription)" | Out-Host
        if ($status.IsCompleted) { return $status.Status -eq $constants.asDELIVERYSTATUS_DELIVERED }
        Start-Sleep -Seconds 11  # reports are read from the modem every 10 s at the most
    }
    $false
}

foreach ($recipient in $Recipients) {
    if (Test-Reached $recipient) {
        "Done: $recipient has the alarm"
        exit 0
    }
}
'Nobody has the alarm'
exit 1
