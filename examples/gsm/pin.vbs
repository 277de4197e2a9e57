' Enters the PIN of the SIM card: cscript pin.vbs COM5 1234
Option Explicit
Dim gsm

Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
gsm.EnterPin WScript.Arguments(1)
WScript.Echo gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
If gsm.LastError <> 0 Then WScript.Quit 1
