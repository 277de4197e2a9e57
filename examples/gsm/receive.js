// Reads and deletes the stored messages, several times.
var rounds = WScript.Arguments.length > 1 ? WScript.Arguments.Item(1) : 1;
var pause = WScript.Arguments.length > 2 ? WScript.Arguments.Item(2) : 5000;
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 1 || !whole.test(rounds) || !whole.test(pause)) {
    WScript.Echo("cscript receive.js COM5 [rounds] [pause in ms]");
    WScript.Quit(2);
}
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var clock = new ActiveXObject("Quorvane.SmsProtocolSmpp");  // sleeps under Wine too, which WScript does not

function check(what) {
    if (gsm.LastError == 0) return;
    WScript.Echo(what + " failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    WScript.Quit(1);
}

for (var round = 1; round <= rounds; ++round) {
    gsm.Receive();
    check("Receive");
    for (var message = gsm.GetFirstMessage(); gsm.LastError == 0; message = gsm.GetNextMessage()) {
        WScript.Echo("From " + message.Sender + ": " + message.Data);
    }
    gsm.DeleteAllMessages();
    if (gsm.LastError != 33060) check("DeleteAllMessages");  // 33060: there was none
    if (round < rounds) clock.Sleep(pause);
}
