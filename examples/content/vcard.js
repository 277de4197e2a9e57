// Sends a business card.
if (WScript.Arguments.length < 4) {
    WScript.Echo('cscript vcard.js COM5 +31612345678 "The name" +31600000002');
    WScript.Quit(2);
}
var constants = new ActiveXObject("Quorvane.SmsConstants");
var content = new ActiveXObject("Quorvane.SmsDatavCard");
var name = WScript.Arguments.Item(2).replace(/[\r\n]/g, " ");  // a line break would begin another line of the card
content.Mobile = WScript.Arguments.Item(3).replace(/[\r\n]/g, "");
if (/^[ -~]*$/.test(name)) {
    content.Name = name;
} else {
    // Letters outside ASCII: the name as a line behind the number, in quoted-printable.
    content.Mobile += "\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:" + encodeURIComponent(name).replace(/%/g, "=");
}
content.Encode();
WScript.Echo("Content: " + content.EncodedMessage);

var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = WScript.Arguments.Item(1);
message.Data = content.EncodedMessage;
message.Format = constants.asMESSAGEFORMAT_DATA_UDH;
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var reference = gsm.Send(message);
if (gsm.LastError != 0) {
    WScript.Echo("Failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    WScript.Quit(1);
}
WScript.Echo("Sent, reference " + reference);
