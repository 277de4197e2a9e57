// Connects, sends one SMS and follows its receipt.
// A character outside the GSM alphabet makes it a Unicode message.
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 6 || !whole.test(WScript.Arguments.Item(1))) {
    WScript.Echo('cscript send.js 127.0.0.1 2775 user password +31612345678 "The text"');
    WScript.Quit(2);
}
var beyondGsm = new RegExp(
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");
var constants = new ActiveXObject("Quorvane.SmsConstants");
var smpp = new ActiveXObject("Quorvane.SmsProtocolSmpp");
smpp.Server = WScript.Arguments.Item(0);
smpp.ServerPort = Number(WScript.Arguments.Item(1));
smpp.SystemID = WScript.Arguments.Item(2);
smpp.SystemPassword = WScript.Arguments.Item(3);
smpp.SystemCharSet = constants.asSMPPCHARSET_GSM;

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
message.Format = beyondGsm.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                              : constants.asMESSAGEFORMAT_TEXT_MULTIPART;
message.RequestDeliveryStatus = true;
var reference = smpp.Send(message);
check("Send");
var status = smpp.QueryStatus(reference, true);
check("QueryStatus");
WScript.Echo("Status: " + status.StatusDescription);
smpp.Disconnect();
