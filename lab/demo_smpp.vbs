' The SMPP part of the demo: cscript demo_smpp.vbs port smpp.log
Option Explicit
Dim smpp, message, reference, status, i

Set smpp = CreateObject("Quorvane.SmsProtocolSmpp")
smpp.Server = "127.0.0.1"
smpp.ServerPort = WScript.Arguments(0)
smpp.SystemID = "demo"
smpp.AdvancedSettings = "Debug=3"
smpp.LogFile = WScript.Arguments(1)
smpp.Connect
If smpp.LastError <> 0 Then
    WScript.Echo "Connect failed: " & smpp.LastError & " " & smpp.GetErrorDescription(smpp.LastError)
    WScript.Quit 1
End If
WScript.Echo "Connected"
For i = 1 To 2
    Set message = CreateObject("Quorvane.SmsMessage")
    message.Recipient = "+31612345678"
    message.RequestDeliveryStatus = True
    If i = 1 Then message.Data = "Hello over SMPP" Else message.Data = String(200, "y")
    reference = smpp.Send(message)
    Set status = smpp.QueryStatus(reference, True)
    WScript.Echo "Sent an SMS, reference " & reference
    WScript.Echo "  Report of " & reference & ": " & status.StatusDescription & ", " & status.StatusCompletedTime
Next
Set message = smpp.GetFirstMessage()
While smpp.LastError = 0
    WScript.Echo "  Received from " & message.Sender & ": " & message.Data
    Set message = smpp.GetNextMessage()
Wend
smpp.Disconnect
WScript.Echo "Done"
