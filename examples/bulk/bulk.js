// Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became of it.
var rate = WScript.Arguments.length > 6 ? WScript.Arguments.Item(6) : 10;
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 6 || !whole.test(WScript.Arguments.Item(1)) || !whole.test(rate)) {
    WScript.Echo('cscript bulk.js 127.0.0.1 2775 user password numbers.txt "The text" [messages per second]');
    WScript.Quit(2);
}
var files = new ActiveXObject("Scripting.FileSystemObject");
if (!files.FileExists(WScript.Arguments.Item(4))) {
    WScript.Echo(WScript.Arguments.Item(4) + " cannot be read");
    WScript.Quit(1);
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
smpp.SystemThroughput = Number(rate);
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Data = WScript.Arguments.Item(5);
message.Format = beyondGsm.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE_MULTIPART
                                              : constants.asMESSAGEFORMAT_TEXT_MULTIPART;
message.RequestDeliveryStatus = true;

function check(what) {
    if (smpp.LastError == 0) return;
    WScript.Echo(what + " failed: " + smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
    WScript.Quit(1);
}

function statusOf(reference) {
    var status = smpp.QueryStatus(reference, false);
    check("QueryStatus");
    return status;
}

smpp.Connect();
check("Connect");
var sent = [], refused = 0, started = new Date();
var file = files.OpenTextFile(WScript.Arguments.Item(4));
while (!file.AtEndOfStream) {
    var recipient = file.ReadLine().replace(/\s/g, "");
    if (recipient == "") continue;
    message.Recipient = recipient;
    var reference = smpp.Send(message);
    if (smpp.LastError == 0) {
        sent.push(reference);
    } else {
        WScript.Echo(recipient + " not sent: " + smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
        ++refused;
    }
}
file.Close();

// Send only queues. The server has answered the last message when its status is no longer this one.
while (sent.length > 0 && statusOf(sent[sent.length - 1]).Status == constants.asDELIVERYSTATUS_SUBMITREQUESTED) smpp.Sleep(10);
var seconds = Math.max(new Date() - started, 1) / 1000;
var timed = sent.length > 1 ? sent.length - 1 : sent.length;  // the first goes at once
WScript.Echo("Sent " + sent.length + " in " + seconds.toFixed(1) + " s: " + (timed / seconds).toFixed(1) + " messages/s");

// The reports: as long as there are open ones, but no more than a minute.
for (var rounds = 1; rounds <= 120; ++rounds) {
    var pending = 0, states = {};
    for (var i = 0; i < sent.length; ++i) {
        var status = statusOf(sent[i]);
        if (!status.IsCompleted) ++pending;
        states[status.StatusDescription] = (states[status.StatusDescription] || 0) + 1;
    }
    if (pending == 0) break;
    smpp.Sleep(500);
}
smpp.Disconnect();
for (var state in states) WScript.Echo(state + ": " + states[state]);
if (refused > 0) WScript.Echo("Not sent: " + refused);
var delivered = states.Delivered || 0;
if (delivered < sent.length + refused) WScript.Quit(1);
WScript.Echo("Done: all " + delivered + " delivered");
