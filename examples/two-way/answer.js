// Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was answered is deleted;
// what could not be answered is tried again. All else (data, MMS notifications, texts from names) stays on the device.
var wanted = WScript.Arguments.length > 2 ? WScript.Arguments.Item(2) : 0;
var pause = WScript.Arguments.length > 3 ? WScript.Arguments.Item(3) : 5000;
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 2 || !whole.test(wanted) || !whole.test(pause)) {
    WScript.Echo('cscript answer.js COM5 "The answer" [number of messages] [pause in ms]');
    WScript.Quit(2);
}
var beyondGsm = new RegExp(
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");
var constants = new ActiveXObject("Quorvane.SmsConstants");
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var clock = new ActiveXObject("Quorvane.SmsProtocolSmpp");  // sleeps under Wine too, which WScript does not
var answer = new ActiveXObject("Quorvane.SmsMessage");
answer.Data = WScript.Arguments.Item(1);
answer.Format = beyondGsm.test(answer.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                            : constants.asMESSAGEFORMAT_TEXT_MULTIPART;

function failed(what) {
    if (gsm.LastError == 0) return false;
    WScript.Echo(what + " failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    return true;
}

function isAnswered(message) {
    if (message.Format != constants.asMESSAGEFORMAT_TEXT && message.Format != constants.asMESSAGEFORMAT_UNICODE) return false;
    if (!/^\+?[0-9]+$/.test(message.Sender)) return false;
    WScript.Echo("From " + message.Sender + ": " + message.Data);
    answer.Recipient = message.Sender;
    gsm.Send(answer);
    return !failed("The answer to " + message.Sender);
}

for (var answered = 0;;) {
    gsm.Receive();
    if (failed("Receive")) WScript.Quit(1);
    var index = 0;  // of the first message that has no answer yet
    while (wanted == 0 || answered < wanted) {
        var message = gsm.GetMessage(index);
        if (gsm.LastError != 0) break;
        if (isAnswered(message)) {
            gsm.DeleteMessage(index);
            if (failed("DeleteMessage")) WScript.Quit(1);  // or it would be answered again and again
            ++answered;
        } else {
            ++index;
        }
    }
    if (wanted > 0 && answered >= wanted) break;
    clock.Sleep(pause);
}
WScript.Echo("Done: " + answered + " answered");
