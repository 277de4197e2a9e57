' Sends a bookmark.
Option Explicit
Dim constants, content, beyondAscii, gsm, message, reference

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript bookmark.vbs COM5 +31612345678 http://www.example.org/ ""The name"""
    WScript.Quit 2
End If
Set beyondAscii = New RegExp
beyondAscii.Pattern = "[^ -~]"
If beyondAscii.Test(WScript.Arguments(3)) Then
    WScript.Echo "The name is not ASCII: docs/content.md says how other letters go"
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set content = CreateObject("Quorvane.SmsDataWapBookmark")
content.URL = WScript.Arguments(2)
content.Description = WScript.Arguments(3)
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
