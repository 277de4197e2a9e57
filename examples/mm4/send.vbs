' Sends a text and pictures to a peer MMS server.
Option Explicit
Dim peer, message, slide, i, whole

Sub Usage()
    WScript.Echo "cscript send.vbs 127.0.0.1 2525 account password 31612345678 example.net ""The text"" picture.jpg ..."
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 7 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage

Set peer = CreateObject("Quorvane.MmsProtocolMm4")
peer.ProviderHost = WScript.Arguments(0)
peer.ProviderPort = WScript.Arguments(1)
peer.ProviderAccount = WScript.Arguments(2)
peer.ProviderPassword = WScript.Arguments(3)
peer.ProviderDomain = WScript.Arguments(5)

Set message = CreateObject("Quorvane.MmsMessage")
message.From = "+31600000001"
message.Subject = "Pictures"
message.AddRecipient WScript.Arguments(4)
Check message, "The recipient"

Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddText WScript.Arguments(6)
For i = 7 To WScript.Arguments.Count - 1
    slide.AddAttachment WScript.Arguments(i)
    Check slide, WScript.Arguments(i)
Next
message.AddSlide slide
Check message, "The slide"

peer.Send message
Check peer, "Send failed"
WScript.Echo "Answer: " & peer.ProviderResponse

Sub Check(object, what)
    If object.LastError = 0 Then Exit Sub
    WScript.Echo what & ": " & object.LastError & " " & object.GetErrorDescription(object.LastError)
    WScript.Quit 1
End Sub
