' Reads and deletes the stored messages, several times.
Option Explicit
Dim gsm, clock, message, rounds, pause, i, whole

Sub Usage()
    WScript.Echo "cscript receive.vbs COM5 [rounds] [pause in ms]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 1 Then Usage
rounds = 1
pause = 5000
If WScript.Arguments.Count > 1 Then rounds = WScript.Arguments(1)
If WScript.Arguments.Count > 2 Then pause = WScript.Arguments(2)
If Not whole.Test(rounds) Or Not whole.Test(pause) Then Usage

Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
Set clock = CreateObject("Quorvane.SmsProtocolSmpp")  ' sleeps under Wine too, which WScript does not

Sub Check(what)
    If gsm.LastError = 0 Then Exit Sub
    WScript.Echo what & " failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
    WScript.Quit 1
End Sub

For i = 1 To CLng(rounds)
    gsm.Receive
    Check "Receive"
    Set message = gsm.GetFirstMessage()
    While gsm.LastError = 0
        WScript.Echo "From " & message.Sender & ": " & message.Data
        Set message = gsm.GetNextMessage()
    Wend
    gsm.DeleteAllMessages
    If gsm.LastError <> 33060 Then Check "DeleteAllMessages"  ' 33060: there was none
    If i < CLng(rounds) Then clock.Sleep pause
Next
