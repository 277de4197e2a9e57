' Tells a phone that a multimedia message waits.
Option Explicit
Dim constants, content, beyondAscii, gsm, message, reference

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript notification.vbs COM5 +31612345678 http://mmsc.example.org/1 ""The subject"""
    WScript.Quit 2
End If
Set beyondAscii = New RegExp
beyondAscii.Pattern = "[^ -~]"
If beyondAscii.Test(WScript.Arguments(3)) Then
    WScript.Echo "The subject is not ASCII: docs/content.md says how other letters go"
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set content = CreateObject("Quorvane.SmsDataMmsNotification")
content.ContentLocation = WScript.Arguments(2)
content.Subject = WScript.Arguments(3)
content.From = "+31600000001"
content.Class = constants.asMMS_CLASS_INFORMATIONAL
content.MessageSize = 20000
content.Expiration = 48
content.Encode
WScript.Echo "Content: " & content.EncodedMessage

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = content.EncodedMessage
message.Format = constants.asMESSAGEFORMAT_DATA_UDH
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
reference = gsm.Send(message)
If gsm.LastError <> 0 Then
    WScript.Echo "Failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
    WScript.Quit 1
End If
WScript.Echo "Sent, reference " & reference
