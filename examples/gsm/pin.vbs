' Enters the PIN of the SIM card.
Option Explicit
Dim gsm

If WScript.Arguments.Count < 2 Then
    WScript.Echo "cscript pin.vbs COM5 1234"
    WScript.Quit 2
End If

Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
gsm.EnterPin WScript.Arguments(1)
WScript.Echo gsm.LastError & " " & gsm.GetErrorDescription(gsm.LastError)
If gsm.LastError <> 0 Then WScript.Quit 1
