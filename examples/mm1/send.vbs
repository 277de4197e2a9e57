' Sends a picture message, through the provider whose settings are in a file (docs/mm1.md).
' With the name of a modem it dials; without, it uses the connection that the machine has.
Option Explicit
Dim mm1, message, slide

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript send.vbs provider.ini +31612345678 ""The text"" picture.jpg [modem]"
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

Set mm1 = CreateObject("Quorvane.MmsProtocolMm1")
mm1.ProviderLoadConfig WScript.Arguments(0)
Check mm1, "The provider"
If WScript.Arguments.Count > 4 Then
    mm1.Device = WScript.Arguments(4)
Else
    mm1.AdvancedSettings = "UseExistingConnection=1"
End If

mm1.Connect
Check mm1, "Connecting"
mm1.Send message
Check mm1, "Sending"
WScript.Echo "Sent, message id " & mm1.MessageId
mm1.Disconnect

Sub Check(object, what)
    Dim code
    code = object.LastError
    If code = 0 Then Exit Sub
    WScript.Echo what & ": " & code & " " & object.GetErrorDescription(code)
    If what = "Sending" Then mm1.Disconnect
    WScript.Quit 1
End Sub
