' Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became of it.
Option Explicit
Dim constants, smpp, message, beyondGsm, file, recipient, reference, sent, refused, started, seconds
Dim rounds, pending, states, state, delivered, rate, files, whole

Sub Usage()
    WScript.Echo "cscript bulk.vbs 127.0.0.1 2775 user password numbers.txt ""The text"" [messages per second]"
    WScript.Quit 2
End Sub

Set whole = New RegExp
whole.Pattern = "^\d{1,9}$"
If WScript.Arguments.Count < 6 Then Usage
If Not whole.Test(WScript.Arguments(1)) Then Usage
rate = 10
If WScript.Arguments.Count > 6 Then rate = WScript.Arguments(6)
If Not whole.Test(rate) Then Usage
Set files = CreateObject("Scripting.FileSystemObject")
If Not files.FileExists(WScript.Arguments(4)) Then
    WScript.Echo WScript.Arguments(4) & " cannot be read"
    WScript.Quit 1
End If

Set constants = CreateObject("Quorvane.SmsConstants")
Set smpp = CreateObject("Quorvane.SmsProtocolSmpp")
smpp.Server = WScript.Arguments(0)
smpp.ServerPort = WScript.Arguments(1)
smpp.SystemID = WScript.Arguments(2)
smpp.SystemPassword = WScript.Arguments(3)
smpp.SystemCharSet = constants.asSMPPCHARSET_GSM
smpp.SystemThroughput = rate

Set message = CreateObject("Quorvane.SmsMessage")
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

Sub Check(what)
    If smpp.LastError = 0 Then Exit Sub
    WScript.Echo what & " failed: " & smpp.LastError & " " & smpp.GetErrorDescription(smpp.LastError)
    WScript.Quit 1
End Sub

Function StatusOf(reference)
    Set StatusOf = smpp.QueryStatus(reference, False)
    Check "QueryStatus"
End Function

smpp.Connect
Check "Connect"
Set sent = CreateObject("Scripting.Dictionary")  ' the recipients by reference
refused = 0
started = Timer
Set file = files.OpenTextFile(WScript.Arguments(4))
Do Until file.AtEndOfStream
    recipient = Trim(file.ReadLine)
    If recipient <> "" Then
        message.Recipient = recipient
        reference = smpp.Send(message)
        If smpp.LastError = 0 Then
            sent.Add reference, recipient
        Else
            WScript.Echo recipient & " not sent: " & smpp.LastError & " " & smpp.GetErrorDescription(smpp.LastError)
            refused = refused + 1
        End If
    End If
Loop
file.Close

' Send only queues. The server has answered the last message when its status is no longer this one.
reference = ""
For Each recipient In sent.Keys
    reference = recipient
Next
If reference <> "" Then
    Do While StatusOf(reference).Status = constants.asDELIVERYSTATUS_SUBMITREQUESTED
        smpp.Sleep 10
    Loop
End If
seconds = Timer - started
If seconds < 0 Then seconds = seconds + 86400  ' over midnight
If seconds = 0 Then seconds = 0.01
Dim timed
timed = sent.Count
If timed > 1 Then timed = timed - 1  ' the first goes at once
WScript.Echo "Sent " & sent.Count & " in " & FormatNumber(seconds, 1) & " s: " & FormatNumber(timed / seconds, 1) & _
    " messages/s"

' The reports: as long as there are open ones, but no more than a minute.
For rounds = 1 To 120
    pending = 0
    Set states = CreateObject("Scripting.Dictionary")
    For Each reference In sent.Keys
        Set state = StatusOf(reference)
        If Not state.IsCompleted Then pending = pending + 1
        states(state.StatusDescription) = states(state.StatusDescription) + 1
    Next
    If pending = 0 Then Exit For
    smpp.Sleep 500
Next
smpp.Disconnect
For Each state In states.Keys
    WScript.Echo state & ": " & states(state)
Next
If refused > 0 Then WScript.Echo "Not sent: " & refused
delivered = CLng(states("Delivered"))
If delivered < sent.Count + refused Then WScript.Quit 1
WScript.Echo "Done: all " & delivered & " delivered"
