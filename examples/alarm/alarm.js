// Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not confirm within a
// minute, to the next.
if (WScript.Arguments.length < 3) {
    WScript.Echo('cscript alarm.js COM5 "The text" +31612345678 [+31687654321 ...]');
    WScript.Quit(2);
}
var beyondGsm = new RegExp(
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");
var constants = new ActiveXObject("Quorvane.SmsConstants");
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var clock = new ActiveXObject("Quorvane.SmsProtocolSmpp");  // sleeps under Wine too, which WScript does not
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Data = WScript.Arguments.Item(1);
message.Format = beyondGsm.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                              : constants.asMESSAGEFORMAT_TEXT_MULTIPART;
message.RequestDeliveryStatus = true;

function failed(what) {
    if (gsm.LastError == 0) return false;
    WScript.Echo(what + " failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    return true;
}

function hasReached(recipient) {
    message.Recipient = recipient;
    var reference = gsm.Send(message);
    if (failed("Sending to " + recipient)) return false;
    WScript.Echo("Sent to " + recipient + ", reference " + reference);
    for (var tries = 1; tries <= 6; ++tries) {
        var status = gsm.QueryStatus(reference);
        if (failed("The report of " + recipient)) return false;
        WScript.Echo(recipient + ": " + status.StatusDescription);
        if (status.IsCompleted) return status.Status == constants.asDELIVERYSTATUS_DELIVERED;
        clock.Sleep(11000);  // reports are read from the modem every 10 s at the most
    }
    return false;
}

for (var i = 2; i < WScript.Arguments.length; ++i) {
    if (hasReached(WScript.Arguments.Item(i))) {
        WScript.Echo("Done: " + WScript.Arguments.Item(i) + " has the alarm");
        WScript.Quit(0);
    }
}
WScript.Echo("Nobody has the alarm");
WScript.Quit(1);
