// Sends one message through a dialled provider.
var kind = WScript.Arguments.length > 4 ? WScript.Arguments.Item(1).toLowerCase() : "";
if (kind != "ucp" && kind != "tap") {
    WScript.Echo('cscript send.js COM5 ucp|tap 0201234567 0612345678 "The text" [password]');
    WScript.Quit(2);
}
var constants = new ActiveXObject("Quorvane.SmsConstants");
var dialup = new ActiveXObject("Quorvane.SmsProtocolDialup");
dialup.Device = WScript.Arguments.Item(0);
dialup.ProviderType = kind == "tap" ? constants.asPROVIDERTYPE_TAP_DEFAULT : constants.asPROVIDERTYPE_UCP;
dialup.ProviderDialString = WScript.Arguments.Item(2);
if (WScript.Arguments.length > 5) dialup.ProviderPassword = WScript.Arguments.Item(5);

var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = WScript.Arguments.Item(3);
message.Data = WScript.Arguments.Item(4);
dialup.Send(message);
if (dialup.LastError != 0) {
    WScript.Echo("Send failed: " + dialup.LastError + " " + dialup.GetErrorDescription(dialup.LastError));
    WScript.Quit(1);
}
WScript.Echo("Answer: " + dialup.ProviderResponse);
