' Receives messages for some seconds.
Option Explicit
Dim smpp, message, seconds, i, whole

Sub Usage()
    WScript.Echo "cscript receive.vbs 127.0.0.1 2775 user password [seconds]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 4 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage
seconds = 2
If WScript.Arguments.Count > 4 Then seconds = WScript.Arguments(4)
If Not whole.Test(seconds) Then Usage

Set smpp = CreateObject("Quorvane.SmsProtocolSmpp")
smpp.Server = WScript.Arguments(0)
smpp.ServerPort = WScript.Arguments(1)
smpp.SystemID = WScript.Arguments(2)
smpp.SystemPassword = WScript.Arguments(3)
smpp.SystemMode = 2     ' asSMPPMODE_RECEIVER
smpp.SystemCharSet = 1  ' asSMPPCHARSET_GSM
smpp.Connect
If smpp.LastError <> 0 Then
    WScript.Echo "Connect failed: " & smpp.LastError & " " & smpp.GetErrorDescription(smpp.LastError)
    WScript.Quit 1
End If
For i = 1 To seconds * 2
    smpp.Sleep 500
    Set message = smpp.GetFirstMessage()
    While smpp.LastError = 0
        WScript.Echo "From " & message.Sender & ": " & message.Data
        Set message = smpp.GetNextMessage()
    Wend
Next
smpp.Disconnect
