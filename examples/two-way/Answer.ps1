# Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was answered is deleted;
# what could not be answered is tried again. All else (data, MMS notifications, texts from names) stays on the device.
param([string]$Device, [string]$Text, [uint32]$Wanted = 0, [uint32]$Pause = 5000)

if (-not $Text) {
    'Answer.ps1 COM5 "The answer" [number of messages] [pause in ms]'
    exit 2
}
$beyondGsm =
    '[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2' +
    '\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]'
$constants = New-Object -ComObject Quorvane.SmsConstants
$gsm = New-Object -ComObject Quorvane.SmsProtocolGsm
$gsm.Device = $Device
$answer = New-Object -ComObject Quorvane.SmsMessage
$answer.Data = $Text
$answer.Format = if ($Text -cmatch $beyondGsm) { $constants.asMESSAGEFORMAT_UNICODE_MULTIPART }
                 else { $constants.asMESSAGEFORMAT_TEXT_MULTIPART }

function Test-Failed([string]$What) {
    if ($gsm.LastError -eq 0) { return $false }
    "$What failed: $($gsm.LastError) $($gsm.GetErrorDescription($gsm.LastError))" | Out-Host
    $true
}

function Test-Answered($Message) {
    $texts = $constants.asMESSAGEFORMAT_TEXT, $constants.asMESSAGEFORMAT_UNICODE
    if ($Message.Format -notin $texts) { return $false }
    if ($Message.Sender -notmatch '^\+?[0-9]+$') { return $false }
    "From $($Message.Sender): $($Message.Data)" | Out-Host
    $answer.Recipient = $Message.Sender
    $gsm.Send([ref]$answer) | Out-Null
    -not (Test-Failed "The answer to $($Message.Sender)")
}

$answered = 0
while ($true) {
    $gsm.Receive() | Out-Null
    if (Test-Failed 'Receive') { exit 1 }
    $index = 0  # of the first message that has no answer yet
    while ($Wanted -eq 0 -or $answered -lt $Wanted) {
        $message = $gsm.GetMessage($index)
        if ($gsm.LastError -ne 0) { break }
        if (Test-Answered $message) {
            $gsm.DeleteMessage($index)
            if (Test-Failed 'DeleteMessage') { exit 1 }  # or it would be answered again and again
            $answered++
        } else {
            $index++
        }
    }
    if ($Wanted -gt 0 -and $answered -ge $Wanted) { break }
    Start-Sleep -Milliseconds $Pause
}
"Done: $answered answered"
