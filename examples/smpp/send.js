// Connects, sends one SMS and follows its receipt: cscript send.js 127.0.0.1 2775 user password +31612345678 "The text"
var smpp = new ActiveXObject("Quorvane.SmsProtocolSmpp");
smpp.Server = WScript.Arguments.Item(0);
smpp.ServerPort = Number(WScript.Arguments.Item(1));
smpp.SystemID = WScript.Arguments.Item(2);
smpp.SystemPassword = WScript.Arguments.Item(3);

function check(what) {
    if (smpp.LastError == 0) return;
    WScript.Echo(what + " failed: " + smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
    WScript.Quit(1);
}

smpp.Connect();
check("Connect");
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = WScript.Arguments.Item(4);
message.Data = WScript.Arguments.Item(5);
message.RequestDeliveryStatus = true;
var reference = smpp.Send(message);
check("Send");
var status = smpp.QueryStatus(reference, true);
check("QueryStatus");
WScript.Echo("Status: " + status.StatusDescription);
smpp.Disconnect();
