' Sends a text with a link that the phone offers to open.
Option Explicit
Dim constants, content, beyondAscii, gsm, message, reference

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript push.vbs COM5 +31612345678 http://www.example.org/ ""The text"""
    WScript.Quit 2
End If
Set beyondAscii = New RegExp
beyondAscii.Pattern = "[^ -~]"
If beyondAscii.Test(WScript.Arguments(3)) Then
    WScript.Echo "The text is not ASCII: docs/content.md says how other letters go"
    WScript.Quit 2
End If

Sub Check(object, what)
    If object.LastError = 0 Then Exit Sub
    WScript.Echo what & " failed: " & object.LastError & " " & object.GetErrorDescription(object.LastError)
    WScript.Quit 1
End Sub

Set constants = CreateObject("Quorvane.SmsConstants")
Set content = CreateObject("Quorvane.SmsDataWapPush")
content.ConnectionType = constants.asWAPPUSH_SERVICE_INDICATION
content.URL = WScript.Arguments(2)
content.Description = WScript.Arguments(3)
content.SignalAction = constants.asWAPPUSHSIGNAL_HIGH
content.Encode
Check content, "Encode"
WScript.Echo "Content: " & content.EncodedMessage

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = content.EncodedMessage
message.Format = constants.asMESSAGEFORMAT_DATA_UDH
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
reference = gsm.Send(message)
Check gsm, "Send"
WScript.Echo "Sent, reference " & reference
