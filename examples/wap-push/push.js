// Sends a text with a link that the phone offers to open.
if (WScript.Arguments.length < 4) {
    WScript.Echo('cscript push.js COM5 +31612345678 http://www.example.org/ "The text"');
    WScript.Quit(2);
}
if (/[^ -~]/.test(WScript.Arguments.Item(3))) {
    WScript.Echo("The text is not ASCII: docs/content.md says how other letters go");
    WScript.Quit(2);
}

function check(object, what) {
    if (object.LastError == 0) return;
    WScript.Echo(what + " failed: " + object.LastError + " " + object.GetErrorDescription(object.LastError));
    WScript.Quit(1);
}

var constants = new ActiveXObject("Quorvane.SmsConstants");
var content = new ActiveXObject("Quorvane.SmsDataWapPush");
content.ConnectionType = constants.asWAPPUSH_SERVICE_INDICATION;
content.URL = WScript.Arguments.Item(2);
content.Description = WScript.Arguments.Item(3);
content.SignalAction = constants.asWAPPUSHSIGNAL_HIGH;
content.Encode();
check(content, "Encode");
WScript.Echo("Content: " + content.EncodedMessage);

var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = WScript.Arguments.Item(1);
message.Data = content.EncodedMessage;
message.Format = constants.asMESSAGEFORMAT_DATA_UDH;
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var reference = gsm.Send(message);
check(gsm, "Send");
WScript.Echo("Sent, reference " + reference);
