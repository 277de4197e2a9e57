' The HTTP part of the demo: cscript demo_http.vbs port http.log
Option Explicit
Dim gateway, message

Set gateway = CreateObject("Quorvane.SmsProtocolHttp")
gateway.ProviderHost = "127.0.0.1"
gateway.ProviderPort = WScript.Arguments(0)
gateway.ProviderWebAccount = "demo"
gateway.ProviderWebPassword = "secret"
gateway.URLText = "send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%"
gateway.ProviderSuccessResponse = "OK"
gateway.ProviderErrorResponse = "ERROR"
gateway.AdvancedSettings = "MaskPasswords=1"
gateway.LogFile = WScript.Arguments(1)
Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = "+31612345678"
message.Sender = "1234"
message.Data = "Hello over HTTP"
gateway.Send message
If gateway.LastError <> 0 Then
    WScript.Echo "Send failed: " & gateway.LastError & " " & gateway.GetErrorDescription(gateway.LastError)
    WScript.Quit 1
End If
WScript.Echo "Sent an SMS, the gateway answered: " & Replace(gateway.ProviderResponse, vbCrLf, "")
WScript.Echo "Done"
