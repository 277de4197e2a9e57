' The GSM part of the demo: cscript demo_gsm.vbs COM5 gsm.log gsm.ini
Option Explicit
Dim constants, gsm, message, reference, status, tries

Set constants = CreateObject("Quorvane.SmsConstants")
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
WScript.Echo "Component " & gsm.Module & ", version " & gsm.Version
gsm.Device = WScript.Arguments(0)
gsm.LogFile = WScript.Arguments(1)
gsm.ActivityFile = WScript.Arguments(2)

Sub Check(what)
    If gsm.LastError <> 0 Then
        WScript.Echo what & " failed: " & gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
        WScript.Quit 1
    End If
End Sub

Sub Send(name, text, format, report)
    Set message = CreateObject("Quorvane.SmsMessage")
    message.Recipient = "+31612345678"
    message.Data = text
    message.Format = format
    message.RequestDeliveryStatus = report
    reference = gsm.Send(message)
    Check name
    WScript.Echo "Sent " & name & ", reference " & reference
End Sub

Send "a plain SMS", "Hello world", constants.asMESSAGEFORMAT_TEXT, False
Send "a long SMS", String(400, "x") & " the end", constants.asMESSAGEFORMAT_TEXT_MULTIPART, False
Send "a Unicode SMS", "Unicode: " & Chr(128) & Chr(233), constants.asMESSAGEFORMAT_UNICODE, False
Send "a flash SMS", "Shown at once", constants.asMESSAGEFORMAT_TEXT_FLASH, False

WScript.Echo "Receiving: " & gsm.Receive() & " messages"
Check "Receive"
Set message = gsm.GetFirstMessage()
While gsm.LastError = 0
    WScript.Echo "  Received from " & message.Sender & ", " & message.Time & ": " & message.Data
    Set message = gsm.GetNextMessage()
Wend

Send "an SMS with a delivery report", "Did it arrive?", constants.asMESSAGEFORMAT_TEXT, True
For tries = 1 To 3
    Set status = gsm.QueryStatus(reference)
    Check "QueryStatus"
    WScript.Echo "  Report of " & reference & ": " & status.StatusDescription & ", " & status.StatusCompletedTime
    If status.IsCompleted Then Exit For
    CreateObject("Quorvane.SmsProtocolSmpp").Sleep 11000  ' WScript has none under Wine
Next
If Not status.IsCompleted Then WScript.Quit 1
WScript.Echo "Done"
