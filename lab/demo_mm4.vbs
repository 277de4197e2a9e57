' The MM4 part of the demo: cscript demo_mm4.vbs port mm4.log mm4.ini
Option Explicit
Dim peer, message, slide

Set peer = CreateObject("Quorvane.MmsProtocolMm4")
peer.ProviderHost = "127.0.0.1"
peer.ProviderPort = WScript.Arguments(0)
peer.ProviderAccount = "demo"
peer.ProviderPassword = "secret"
peer.ProviderDomain = "mms.example.net"
peer.AdvancedSettings = "MaskPasswords=1"
peer.LogFile = WScript.Arguments(1)
peer.ActivityFile = WScript.Arguments(2)

Set slide = CreateObject("Quorvane.MmsSlide")
slide.Duration = 7
slide.AddText "The picture of the day"
slide.AddAttachmentData "day.gif", Picture()
Check slide, "The slide"
Set message = CreateObject("Quorvane.MmsMessage")
message.From = "+31600000001"
message.Subject = "Picture of the day"
message.AddRecipient "+31612345678"
message.AddRecipient "eve@example.org"
Check message, "The recipients"
message.AddSlide slide

peer.Send message
Check peer, "Send"
WScript.Echo "Sent a mail of " & Len(message.EncodedMessage) & " octets, the server answered: " & peer.ProviderResponse
WScript.Echo "Done"

' A GIF of one dot.
Function Picture()
    Dim octets, i, data(34)
    octets = Split("47 49 46 38 39 61 01 00 01 00 80 01 00 00 00 00 FF FF FF 2C 00 00 00 00 01 00 01 00 00 02 02 4C 01 00 3B")
    For i = 0 To UBound(octets)
        data(i) = CByte("&H" & octets(i))
    Next
    Picture = data
End Function

Sub Check(object, what)
    If object.LastError = 0 Then Exit Sub
    WScript.Echo what & " failed: " & object.LastError & " " & object.GetErrorDescription(object.LastError)
    WScript.Quit 1
End Sub
