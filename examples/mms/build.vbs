' Builds a multimedia message of a text and pictures and saves it.
Option Explicit
Dim constants, message, slide, i

If WScript.Arguments.Count < 4 Then
    WScript.Echo "cscript build.vbs message.mms +31612345678 ""The text"" picture.jpg ..."
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.MmsConstants")
Set message = CreateObject("Quorvane.MmsMessage")
message.From = "+31600000001"
message.Subject = "Pictures"
message.Priority = constants.asMMS_PRIORITY_NORMAL
message.AddRecipient WScript.Arguments(1), constants.asMMS_RECIPIENT_TO
Check message, "The recipient"

' A slide for each picture, the text with the first.
For i = 3 To WScript.Arguments.Count - 1
    Set slide = CreateObject("Quorvane.MmsSlide")
    slide.Duration = 7
    If i = 3 Then slide.AddText WScript.Arguments(2)
    slide.AddAttachment WScript.Arguments(i)
    Check slide, WScript.Arguments(i)
    message.AddSlide slide
    Check message, "The slide"
Next

message.SaveToFile WScript.Arguments(0), constants.asMMS_MM1FILE_MSENDREQ
Check message, "Saving"
WScript.Echo "Saved " & Len(message.EncodedMessage) & " octets, transaction " & message.TransactionId

Sub Check(object, what)
    If object.LastError = 0 Then Exit Sub
    WScript.Echo what & ": " & object.LastError & " " & object.GetErrorDescription(object.LastError)
    WScript.Quit 1
End Sub
