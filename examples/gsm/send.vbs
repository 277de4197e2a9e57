' Sends one SMS: cscript send.vbs COM5 +31612345678 "The text"
' Long texts go out in parts; characters outside the GSM alphabet make it a Unicode message.
Option Explicit
Dim constants, gsm, message, reference, i, char, unicode

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = WScript.Arguments(2)

unicode = False
For i = 1 To Len(message.Data)
    char = Mid(message.Data, i, 1)
    If Asc(char) = 63 And char <> "?" Then unicode = True
Next
If unicode Then
    message.Format = constants.asMESSAGEFORMAT_UNICODE_MULTIPART
Else
    message.Format = constants.asMESSAGEFORMAT_TEXT_MULTIPART
End If

reference = gsm.Send(message)
If gsm.LastError = 0 Then
    WScript.Echo "Sent, reference " & reference
Else
    WScript.Echo "Failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
    WScript.Quit 1
End If
