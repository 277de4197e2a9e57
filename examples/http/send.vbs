' Sends one SMS through an HTTP gateway, whose requests two templates describe.
' A character outside the GSM alphabet makes it a Unicode message.
Option Explicit
Dim constants, gateway, message, beyondGsm, whole

Sub Usage()
    WScript.Echo "cscript send.vbs 127.0.0.1 8080 +31612345678 ""The text"" [account password]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 4 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage

Set constants = CreateObject("Quorvane.SmsConstants")
Set gateway = CreateObject("Quorvane.SmsProtocolHttp")
gateway.ProviderHost = WScript.Arguments(0)
gateway.ProviderPort = WScript.Arguments(1)
' The templates: a request as the provider describes it, from behind "host/", with a placeholder where the number and
' where the text stand. What follows "?" is posted. These are for a gateway that answers OK or ERROR; docs/http.md has
' all placeholders.
gateway.URLText = "send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%"
gateway.URLUnicode = "send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%"
gateway.ProviderSuccessResponse = "OK"
gateway.ProviderErrorResponse = "ERROR"
If WScript.Arguments.Count > 5 Then
    gateway.ProviderWebAccount = WScript.Arguments(4)
    gateway.ProviderWebPassword = WScript.Arguments(5)
End If

Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = WScript.Arguments(2)
message.Data = WScript.Arguments(3)
Set beyondGsm = New RegExp
beyondGsm.Pattern = _
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" & _
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]"
If beyondGsm.Test(message.Data) Then
    message.Format = constants.asMESSAGEFORMAT_UNICODE
Else
    message.Format = constants.asMESSAGEFORMAT_TEXT
End If
gateway.Send message
If gateway.LastError <> 0 Then
    WScript.Echo "Send failed: " & gateway.LastError & " " & gateway.GetErrorDescription(gateway.LastError)
    WScript.Quit 1
End If
WScript.Echo "Answer: " & gateway.ProviderResponse
