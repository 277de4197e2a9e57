// Receives messages for some seconds.
var seconds = WScript.Arguments.length > 4 ? WScript.Arguments.Item(4) : 2;
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 4 || !whole.test(WScript.Arguments.Item(1)) || !whole.test(seconds)) {
    WScript.Echo("cscript receive.js 127.0.0.1 2775 user password [seconds]");
    WScript.Quit(2);
}
var smpp = new ActiveXObject("Quorvane.SmsProtocolSmpp");
smpp.Server = WScript.Arguments.Item(0);
smpp.ServerPort = Number(WScript.Arguments.Item(1));
smpp.SystemID = WScript.Arguments.Item(2);
smpp.SystemPassword = WScript.Arguments.Item(3);
smpp.SystemMode = 2;     // asSMPPMODE_RECEIVER
smpp.SystemCharSet = 1;  // asSMPPCHARSET_GSM
smpp.Connect();
if (smpp.LastError != 0) {
    WScript.Echo("Connect failed: " + smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
    WScript.Quit(1);
}
for (var i = 0; i < seconds * 2; ++i) {
    smpp.Sleep(500);
    for (var message = smpp.GetFirstMessage(); smpp.LastError == 0; message = smpp.GetNextMessage()) {
        WScript.Echo("From " + message.Sender + ": " + message.Data);
    }
}
smpp.Disconnect();
