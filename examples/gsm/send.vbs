' Sends one SMS
' Long texts go out in parts; a character outside the GSM alphabet makes it a Unicode message.
Option Explicit
Dim constants, gsm, message, beyondGsm, reference

If WScript.Arguments.Count < 3 Then
    WScript.Echo "cscript send.vbs COM5 +31612345678 ""The text"""
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = WScript.Arguments(2)

Set beyondGsm = New RegExp
beyondGsm.Pattern = _
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" & _
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]"
If beyondGsm.Test(message.Data) Then
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
