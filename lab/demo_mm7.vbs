' The MM7 part of the demo: cscript demo_mm7.vbs port mm7.log, with a picture.png in the folder of the log
Option Explicit
Dim mm7, message, slide, folder

Set mm7 = CreateObject("Quorvane.MmsProtocolMm7")
mm7.ProviderHost = "127.0.0.1"
mm7.ProviderPort = WScript.Arguments(0)
mm7.ProviderPath = "mm7"
mm7.ProviderVASPID = "velqar"
mm7.ProviderVASID = "demo"
mm7.LogFile = WScript.Arguments(1)

Sub Check(object, what)
    Dim code
    code = object.LastError
    If code = 0 Then Exit Sub
    WScript.Echo what & " failed: " & code & " " & object.GetErrorDescription(code)
    WScript.Quit 1
End Sub

Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddText "Look at this"
folder = CreateObject("Scripting.FileSystemObject").GetParentFolderName(WScript.Arguments(1))
slide.AddAttachment folder & "\picture.png"
Check slide, "The picture"
Set message = CreateObject("Quorvane.MmsMessage")
message.From = "1234"
message.Subject = "A picture"
message.AddRecipient "+31612345678"
message.AddSlide slide
mm7.Send message
Check mm7, "Send"
WScript.Echo "Sent a picture message, message id " & mm7.MessageId
WScript.Echo "Done"
