' The pager part of the demo: cscript demo_pager.vbs port pager.log
Option Explicit
Dim pager, message

Set pager = CreateObject("Quorvane.PagerProtocolSnpp")
pager.Server = "127.0.0.1"
pager.ServerPort = WScript.Arguments(0)
pager.ProviderPassword = "secret"
pager.AdvancedSettings = "MaskPasswords=1"
pager.LogFile = WScript.Arguments(1)
Set message = CreateObject("Quorvane.PagerMessage")
message.Recipient = "5551212"
message.Data = "Your network is down"
pager.Send message
If pager.LastError <> 0 Then
    WScript.Echo "Send failed: " & pager.LastError & " " & pager.GetErrorDescription(pager.LastError)
    WScript.Quit 1
End If
WScript.Echo "Sent a page, the server answered: " & pager.ProviderResponse
WScript.Echo "Done"
