' Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md).
Option Explicit
Dim mm7, message, slide

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript send.vbs provider.ini +31612345678 ""The text"" picture.jpg"
    WScript.Quit 2
End If

Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddText WScript.Arguments(2)
slide.AddAttachment WScript.Arguments(3)
Check slide, "The picture"

Set message = CreateObject("Quorvane.MmsMessage")
message.Subject = "A picture"
message.AddRecipient WScript.Arguments(1)
Check message, "The recipient"
message.AddSlide slide

Set mm7 = CreateObject("Quorvane.MmsProtocolMm7")
mm7.ProviderLoadConfig WScript.Arguments(0)
Check mm7, "The provider"
mm7.Send message
Check mm7, "Sending"
WScript.Echo "Sent, message id " & mm7.MessageId

Sub Check(object, what)
    Dim code
    code = object.LastError
    If code = 0 Then Exit Sub
    WScript.Echo what & ": " & code & " " & object.GetErrorDescription(code)
    If what = "Sending" Then  ' before, there may be no mm7
        If mm7.ProviderResponse <> "" Then WScript.Echo "The centre said: " & mm7.ProviderResponse
    End If
    WScript.Quit 1
End Sub
