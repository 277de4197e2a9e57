' Sends an SMS and follows its delivery report.
' The reports are kept in a file, so that another run could go on where this one stopped.
Option Explicit
Dim constants, gsm, clock, message, beyondGsm, reference, status, tries, pause, file, whole

Sub Usage()
    WScript.Echo "cscript report.vbs COM5 +31612345678 ""The text"" [pause in ms]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 3 Then Usage
pause = 11000
If WScript.Arguments.Count > 3 Then pause = WScript.Arguments(3)
If Not whole.Test(pause) Then Usage
file = "reports.txt"

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
Set clock = CreateObject("Quorvane.SmsProtocolSmpp")  ' sleeps under Wine too, which WScript does not
gsm.Device = WScript.Arguments(0)
Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = WScript.Arguments(2)
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

Sub Check()
    If gsm.LastError = 0 Then Exit Sub
    WScript.Echo "Failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
    WScript.Quit 1
End Sub

reference = gsm.Send(message)
Check
WScript.Echo "Sent, reference " & reference
gsm.SaveReports file
Check

gsm.Clear
gsm.Device = WScript.Arguments(0)
gsm.LoadReports file
Check
For tries = 1 To 3
    Set status = gsm.QueryStatus(reference)
    Check
    WScript.Echo "Status: " & status.StatusDescription
    If status.IsCompleted Then
        WScript.Echo "Completed: " & status.StatusCompletedTime
        WScript.Quit 0
    End If
    clock.Sleep pause
Next
