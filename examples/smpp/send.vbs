' Connects, sends one SMS and follows its receipt: cscript send.vbs 127.0.0.1 2775 user password +31612345678 "The text"
Option Explicit
Dim smpp, message, reference, status

Set smpp = CreateObject("Quorvane.SmsProtocolSmpp")
smpp.Server = WScript.Arguments(0)
smpp.ServerPort = WScript.Arguments(1)
smpp.SystemID = WScript.Arguments(2)
smpp.SystemPassword = WScript.Arguments(3)

Sub Check(what)
    If smpp.LastError <> 0 Then
        WScript.Echo what & " failed: " & smpp.LastError & " " & smpp.GetErrorDescription(smpp.LastError)
        WScript.Quit 1
    End If
End Sub

smpp.Connect
Check "Connect"
Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(4)
message.Data = WScript.Arguments(5)
message.RequestDeliveryStatus = True
reference = smpp.Send(message)
Check "Send"
Set status = smpp.QueryStatus(reference, True)
Check "QueryStatus"
WScript.Echo "Status: " & status.StatusDescription
smpp.Disconnect
