' The dial-up part of the demo: cscript demo_dialup.vbs COM6 UCP|TAP dialup.log
Option Explicit
Dim constants, dialup, message

Set constants = CreateObject("Quorvane.SmsConstants")
Set dialup = CreateObject("Quorvane.SmsProtocolDialup")
dialup.Device = WScript.Arguments(0)
If WScript.Arguments(1) = "TAP" Then dialup.ProviderType = constants.asPROVIDERTYPE_TAP_DEFAULT
dialup.ProviderPassword = "secret"
dialup.AdvancedSettings = "MaskPasswords=1"
dialup.LogFile = WScript.Arguments(2)
dialup.ProviderDialString = "0201234567"
Set message = CreateObject("Quorvane.SmsMessage")
message.Sender = "1234"
message.Recipient = "0612345678"
message.Data = "Hello over " & WScript.Arguments(1)
dialup.Send message
If dialup.LastError <> 0 Then
    WScript.Echo "Send failed: " & dialup.LastError & " " & dialup.GetErrorDescription(dialup.LastError)
    WScript.Quit 1
End If
WScript.Echo "Sent a message, the provider answered: " & dialup.ProviderResponse
WScript.Echo "Done"
