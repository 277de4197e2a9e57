// Sends an SMS and follows its delivery report: cscript report.js COM5 +31612345678 "The text" [pause in ms]
var pause = WScript.Arguments.length > 3 ? Number(WScript.Arguments.Item(3)) : 11000;
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
var message = new ActiveXObject("Quorvane.SmsMessage");
gsm.Device = WScript.Arguments.Item(0);
message.Recipient = WScript.Arguments.Item(1);
message.Data = WScript.Arguments.Item(2);
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
    WScript.Sleep(pause);
}
