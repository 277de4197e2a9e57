// Sends a text and pictures to a peer MMS server.
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 7 || !whole.test(WScript.Arguments.Item(1))) {
    WScript.Echo('cscript send.js 127.0.0.1 2525 account password 31612345678 example.net "The text" picture.jpg ...');
    WScript.Quit(2);
}
var peer = new ActiveXObject("Quorvane.MmsProtocolMm4");
peer.ProviderHost = WScript.Arguments.Item(0);
peer.ProviderPort = Number(WScript.Arguments.Item(1));
peer.ProviderAccount = WScript.Arguments.Item(2);
peer.ProviderPassword = WScript.Arguments.Item(3);
peer.ProviderDomain = WScript.Arguments.Item(5);

var message = new ActiveXObject("Quorvane.MmsMessage");
message.From = "+31600000001";
message.Subject = "Pictures";
message.AddRecipient(WScript.Arguments.Item(4));
Check(message, "The recipient");

var slide = new ActiveXObject("Quorvane.MmsSlide");
slide.AddText(WScript.Arguments.Item(6));
for (var i = 7; i < WScript.Arguments.length; ++i) {
    slide.AddAttachment(WScript.Arguments.Item(i));
    Check(slide, WScript.Arguments.Item(i));
}
message.AddSlide(slide);
Check(message, "The slide");

peer.Send(message);
Check(peer, "Send failed");
WScript.Echo("Answer: " + peer.ProviderResponse);

function Check(object, what) {
    if (object.LastError == 0) return;
    WScript.Echo(what + ": " + object.LastError + " " + object.GetErrorDescription(object.LastError));
    WScript.Quit(1);
}
