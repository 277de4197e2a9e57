' Sends an SMS and follows its delivery report: cscript report.vbs COM5 +31612345678 "The text" [pause in ms]
' The reports are kept in a file, so that another run could go on where this one stopped.
Option Explicit
Dim gsm, message, reference, status, tries, pause, file

pause = 11000
If WScript.Arguments.Count > 3 Then pause = CLng(WScript.Arguments(3))
file = "reports.txt"

Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(1)
message.Data = WScript.Arguments(2)
message.RequestDeliveryStatus = True

reference = gsm.Send(message)
If gsm.LastError <> 0 Then
    WScript.Echo "Failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
    WScript.Quit 1
End If
WScript.Echo "Sent, reference " & reference
gsm.SaveReports file

gsm.Clear
gsm.Device = WScript.Arguments(0)
gsm.LoadReports file
For tries = 1 To 3
    Set status = gsm.QueryStatus(reference)
    If gsm.LastError <> 0 Then
        WScript.Echo "Failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
        WScript.Quit 1
    End If
    WScript.Echo "Status: " & status.StatusDescription
    If status.IsCompleted Then
        WScript.Echo "Completed: " & status.StatusCompletedTime
        WScript.Quit 0
    End If
    WScript.Sleep pause
Next
