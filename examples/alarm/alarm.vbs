' Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not confirm within a
' minute, to the next.
Option Explicit
Dim constants, gsm, clock, message, beyondGsm, i

If WScript.Arguments.Count < 3 Then
    WScript.Echo "cscript alarm.vbs COM5 ""The text"" +31612345678 [+31687654321 ...]"
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
Set clock = CreateObject("Quorvane.SmsProtocolSmpp")  ' sleeps under Wine too, which WScript does not
Set message = CreateObject("Quorvane.SmsMessage")
message.Data = WScript.Arguments(1)
message.RequestDeliveryStatus = True
Set beyondGsm = New RegExp
beyondGsm.Pattern = _
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" & _
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]"
If beyondGsm.Test(message.Data) Then
    message.Format = constants.asMESSAGEFORMAT_UNICODE_MULTIPART
Else
    message.Format = constants.asMESSAGEFORMAT_TEXT_MULTIPART
End If

Function Failed(what)
    Failed = gsm.LastError <> 0
    If Failed Then WScript.Echo what & " failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
End Function

Function HasReached(recipient)
    Dim reference, status, tries
    HasReached = False
    message.Recipient = recipient
    reference = gsm.Send(message)
    If Failed("Sending to " & recipient) Then Exit Function
    WScript.Echo "Sent to " & recipient & ", reference " & reference
    For tries = 1 To 6
        Set status = gsm.QueryStatus(reference)
        If Failed("The report of " & recipient) Then Exit Function
        WScript.Echo recipient & ": " & status.StatusDescription
        If status.IsCompleted Then
            HasReached = status.Status = constants.asDELIVERYSTATUS_DELIVERED
            Exit Function
        End If
        clock.Sleep 11000  ' reports are read from the modem every 10 s at the most
    Next
End Function

For i = 2 To WScript.Arguments.Count - 1
    If HasReached(WScript.Arguments(i)) Then
        WScript.Echo "Done: " & WScript.Arguments(i) & " has the alarm"
        WScript.Quit 0
    End If
Next
WScript.Echo "Nobody has the alarm"
WScript.Quit 1
