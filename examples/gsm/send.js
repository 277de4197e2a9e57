// Sends one SMS: cscript send.js COM5 +31612345678 "The text"
var constants = new ActiveXObject("Quorvane.SmsConstants");
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
var message = new ActiveXObject("Quorvane.SmsMessage");
gsm.Device = WScript.Arguments.Item(0);
message.Recipient = WScript.Arguments.Item(1);
message.Data = WScript.Arguments.Item(2);
message.Format = /[^\x00-\xff]/.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                   : constants.asMESSAGEFORMAT_TEXT_MULTIPART;

var reference = gsm.Send(message);
if (gsm.LastError == 0) {
    WScript.Echo("Sent, reference " + reference);
} else {
    WScript.Echo("Failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    WScript.Quit(1);
}
