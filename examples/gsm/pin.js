// Enters the PIN of the SIM card.
if (WScript.Arguments.length < 2) {
    WScript.Echo("cscript pin.js COM5 1234");
    WScript.Quit(2);
}
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
gsm.EnterPin(WScript.Arguments.Item(1));
WScript.Echo(gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
if (gsm.LastError != 0) WScript.Quit(1);
