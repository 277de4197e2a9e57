' Sends one page through a paging server.
Option Explicit
Dim pager, message, whole

Sub Usage()
    WScript.Echo "cscript send.vbs 127.0.0.1 4444 5551212 ""The text"" [password]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 4 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage

Set pager = CreateObject("Quorvane.PagerProtocolSnpp")
pager.Server = WScript.Arguments(0)
pager.ServerPort = WScript.Arguments(1)
If WScript.Arguments.Count > 4 Then pager.ProviderPassword = WScript.Arguments(4)

Set message = CreateObject("Quorvane.PagerMessage")
message.Recipient = WScript.Arguments(2)
message.Data = WScript.Arguments(3)
pager.Send message
If pager.LastError <> 0 Then
    WScript.Echo "Send failed: " & pager.LastError & " " & pager.GetErrorDescription(pager.LastError)
    WScript.Quit 1
End If
WScript.Echo "Answer: " & pager.ProviderResponse
