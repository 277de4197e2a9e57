' Sends one message through a dialled provider.
Option Explicit
Dim constants, dialup, message, kind

If WScript.Arguments.Count > 4 Then kind = LCase(WScript.Arguments(1))
If kind <> "ucp" And kind <> "tap" Then
    WScript.Echo "cscript send.vbs COM5 ucp|tap 0201234567 0612345678 ""The text"" [password]"
    WScript.Quit 2
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set dialup = CreateObject("Quorvane.SmsProtocolDialup")
dialup.Device = WScript.Arguments(0)
If kind = "tap" Then
    dialup.ProviderType = constants.asPROVIDERTYPE_TAP_DEFAULT
Else
    dialup.ProviderType = constants.asPROVIDERTYPE_UCP
End If
dialup.ProviderDialString = WScript.Arguments(2)
If WScript.Arguments.Count > 5 Then dialup.ProviderPassword = WScript.Arguments(5)

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(3)
message.Data = WScript.Arguments(4)
dialup.Send message
If dialup.LastError <> 0 Then
    WScript.Echo "Send failed: " & dialup.LastError & " " & dialup.GetErrorDescription(dialup.LastError)
    WScript.Quit 1
End If
WScript.Echo "Answer: " & dialup.ProviderResponse
