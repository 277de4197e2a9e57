' The MM1 part of the demo: cscript demo_mm1.vbs port folder COM7 mm1.log
Option Explicit
Dim constants, mm1, message, slide, notification, location, pattern, folder, i

folder = WScript.Arguments(1)
Set constants = CreateObject("Quorvane.MmsConstants")
Set mm1 = CreateObject("Quorvane.MmsProtocolMm1")
mm1.ProviderWAPGateway = "http://127.0.0.1:" & WScript.Arguments(0)
mm1.ProviderMMSC = "http://mmsc.example.org/mms"
mm1.Device = WScript.Arguments(2)
mm1.AdvancedSettings = "UseExistingConnection=1"
mm1.LogFile = WScript.Arguments(3)

Sub Check(object, what)
    Dim code
    code = object.LastError
    If code = 0 Then Exit Sub
    WScript.Echo what & " failed: " & code & " " & object.GetErrorDescription(code)
    WScript.Quit 1
End Sub

mm1.Connect
Check mm1, "Connect"

Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddText "Look at this"
slide.AddAttachment folder & "\picture.png"
Check slide, "The picture"
Set message = CreateObject("Quorvane.MmsMessage")
message.Subject = "A picture"
message.AddRecipient "+31612345678"
message.AddSlide slide
mm1.Send message
Check mm1, "Send"
WScript.Echo "Sent a picture message, message id " & mm1.MessageId

Set notification = mm1.GetFirstMessage()
Check mm1, "GetFirstMessage"
WScript.Echo "In the modem: " & notification.Data
Set pattern = New RegExp
pattern.Pattern = "URL=(\S+)"
location = pattern.Execute(notification.Data)(0).SubMatches(0)

Set message = mm1.Retrieve(location)
Check mm1, "Retrieve"
WScript.Echo "Fetched """ & message.Subject & """ from " & message.From
Set slide = message.GetFirstSlide()
For i = 0 To slide.CountAttachments() - 1
    WScript.Echo "  " & slide.GetAttachmentName(i)
Next
For i = 0 To slide.GetTextCount() - 1
    WScript.Echo "  " & slide.GetText(i)
Next
message.SaveToFile folder & "\fetched.mms", constants.asMMS_MM1FILE_MRETRIEVECONF
Check message, "SaveToFile"
mm1.Disconnect
Check mm1, "Disconnect"
WScript.Echo "Done"
