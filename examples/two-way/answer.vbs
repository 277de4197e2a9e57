' Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was answered is deleted;
' what could not be answered is tried again. All else (data, MMS notifications, texts from names) stays on the device.
Option Explicit
Dim constants, gsm, clock, answer, message, number, beyondGsm, wanted, pause, answered, index, whole

Sub Usage()
    WScript.Echo "cscript answer.vbs COM5 ""The answer"" [number of messages] [pause in ms]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 2 Then Usage
wanted = 0
pause = 5000
If WScript.Arguments.Count > 2 Then wanted = WScript.Arguments(2)
If WScript.Arguments.Count > 3 Then pause = WScript.Arguments(3)
If Not whole.Test(wanted) Or Not whole.Test(pause) Then Usage
wanted = CLng(wanted)

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
Set clock = CreateObject("Quorvane.SmsProtocolSmpp")  ' sleeps under Wine too, which WScript does not
Set answer = CreateObject("Quorvane.SmsMessage")
answer.Data = WScript.Arguments(1)
Set beyondGsm = New RegExp
beyondGsm.Pattern = _
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" & _
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]"
If beyondGsm.Test(answer.Data) Then
    answer.Format = constants.asMESSAGEFORMAT_UNICODE_MULTIPART
Else
    answer.Format = constants.asMESSAGEFORMAT_TEXT_MULTIPART
End If
Set number = New RegExp
number.Pattern = "^\+?[0-9]+$"

Function Failed(what)
    Failed = gsm.LastError <> 0
    If Failed Then WScript.Echo what & " failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
End Function

Function IsAnswered(message)
    IsAnswered = False
    If message.Format <> constants.asMESSAGEFORMAT_TEXT And message.Format <> constants.asMESSAGEFORMAT_UNICODE Then Exit Function
    If Not number.Test(message.Sender) Then Exit Function
    WScript.Echo "From " & message.Sender & ": " & message.Data
    answer.Recipient = message.Sender
    gsm.Send answer
    IsAnswered = Not Failed("The answer to " & message.Sender)
End Function

answered = 0
Do
    gsm.Receive
    If Failed("Receive") Then WScript.Quit 1
    index = 0  ' of the first message that has no answer yet
    Do While wanted = 0 Or answered < wanted
        Set message = gsm.GetMessage(index)
        If gsm.LastError <> 0 Then Exit Do
        If IsAnswered(message) Then
            gsm.DeleteMessage index
            If Failed("DeleteMessage") Then WScript.Quit 1  ' or it would be answered again and again
            answered = answered + 1
        Else
            index = index + 1
        End If
    Loop
    If wanted > 0 And answered >= wanted Then Exit Do
    clock.Sleep pause
Loop
WScript.Echo "Done: " & answered & " answered"
