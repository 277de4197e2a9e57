' Connects, sends one SMS and follows its receipt.
' A character outside the GSM alphabet makes it a Unicode message.
Option Explicit
Dim constants, smpp, message, beyondGsm, reference, status, whole

Sub Usage()
    WScript.Echo "cscript send.vbs 127.0.0.1 2775 user password +31612345678 ""The text"""
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 6 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage

Set constants = CreateObject("Quorvane.SmsConstants")
Set smpp = CreateObject("Quorvane.SmsProtocolSmpp")
smpp.Server = WScript.Arguments(0)
smpp.ServerPort = WScript.Arguments(1)
smpp.SystemID = WScript.Arguments(2)
smpp.SystemPassword = WScript.Arguments(3)
smpp.SystemCharSet = constants.asSMPPCHARSET_GSM

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
Set beyondGsm = New RegExp
beyondGsm.Pattern = _
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" & _
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]"
If beyondGsm.Test(message.Data) Then
    message.Format = constants.asMESSAGEFORMAT_UNICODE_MULTIPART
Else
    message.Format = constants.asMESSAGEFORMAT_TEXT_MULTIPART
End If
reference = smpp.Send(message)
Check "Send"
Set status = smpp.QueryStatus(reference, True)
Check "QueryStatus"
WScript.Echo "Status: " & status.StatusDescription
smpp.Disconnect
