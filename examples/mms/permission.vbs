' Builds a message whose picture may be shown a few times only.
Option Explicit
Dim constants, message, permission, slide, whole

Sub Usage()
    WScript.Echo "cscript permission.vbs message.mms +31612345678 picture.jpg times"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 4 Then Usage
If Not whole.Test(WScript.Arguments(3)) Then Usage

Set constants = CreateObject("Quorvane.MmsConstants")
Set permission = CreateObject("Quorvane.MmsPermission")
permission.Operation = constants.asMMS_DRM_DISPLAY
permission.Times = CLng(WScript.Arguments(3))

Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddAttachment WScript.Arguments(2), permission
Check slide

Set message = CreateObject("Quorvane.MmsMessage")
message.AddRecipient WScript.Arguments(1)
Check message
message.AddSlide slide
message.SaveToFile WScript.Arguments(0), constants.asMMS_MM1FILE_MSENDREQ
Check message
WScript.Echo "Saved with " & slide.GetAttachmentName(0)

Sub Check(object)
    If object.LastError = 0 Then Exit Sub
    WScript.Echo "Failed: " & object.LastError & " " & object.GetErrorDescription(object.LastError)
    WScript.Quit 1
End Sub
