// Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md).
if (WScript.Arguments.length < 4) {
    WScript.Echo('cscript send.js provider.ini +31612345678 "The text" picture.jpg');
    WScript.Quit(2);
}

function Check(object, what) {
    var code = object.LastError;
    if (code == 0) return;
    WScript.Echo(what + ": " + code + " " + object.GetErrorDescription(code));
    if (what == "Sending" && mm7.ProviderResponse != "") WScript.Echo("The centre said: " + mm7.ProviderResponse);
    WScript.Quit(1);
}

var slide = new ActiveXObject("Quorvane.MmsSlide");
slide.AddText(WScript.Arguments.Item(2));
slide.AddAttachment(WScript.Arguments.Item(3));
Check(slide, "The picture");

var message = new ActiveXObject("Quorvane.MmsMessage");
message.Subject = "A picture";
message.AddRecipient(WScript.Arguments.Item(1));
Check(message, "The recipient");
message.AddSlide(slide);

var mm7 = new ActiveXObject("Quorvane.MmsProtocolMm7");
mm7.ProviderLoadConfig(WScript.Arguments.Item(0));
Check(mm7, "The provider");
mm7.Send(message);
Check(mm7, "Sending");
WScript.Echo("Sent, message id " + mm7.MessageId);
