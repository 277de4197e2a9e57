// Sends an SMS and follows its delivery report.
var pause = WScript.Arguments.length > 3 ? WScript.Arguments.Item(3) : 11000;
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 3 || !whole.test(pause)) {
    WScript.Echo('cscript report.js COM5 +31612345678 "The text" [pause in ms]');
    WScript.Quit(2);
}
var beyondGsm = new RegExp(
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");
var constants = new ActiveXObject("Quorvane.SmsConstants");
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
var message = new ActiveXObject("Quorvane.SmsMessage");
gsm.Device = WScript.Arguments.Item(0);
var clock = new ActiveXObject("Quorvane.SmsProtocolSmpp");  // sleeps under Wine too, which WScript does not
message.Recipient = WScript.Arguments.Item(1);
message.Data = WScript.Arguments.Item(2);
message.Format = beyondGsm.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                              : constants.asMESSAGEFORMAT_TEXT_MULTIPART;
message.RequestDeliveryStatus = true;

function check() {
    if (gsm.LastError == 0) return;
    WScript.Echo("Failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    WScript.Quit(1);
}

var reference = gsm.Send(message);
check();
WScript.Echo("Sent, reference " + reference);
for (var tries = 1; tries <= 3; ++tries) {
    var status = gsm.QueryStatus(reference);
    check();
    WScript.Echo("Status: " + status.StatusDescription);
    if (status.IsCompleted) {
        WScript.Echo("Completed: " + status.StatusCompletedTime);
        break;
    }
    clock.Sleep(pause);
}
