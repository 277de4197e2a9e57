// Sends one SMS through an HTTP gateway, whose requests two templates describe.
// A character outside the GSM alphabet makes it a Unicode message.
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 4 || !whole.test(WScript.Arguments.Item(1))) {
    WScript.Echo('cscript send.js 127.0.0.1 8080 +31612345678 "The text" [account password]');
    WScript.Quit(2);
}
var beyondGsm = new RegExp(
    "[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
    "\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");
var constants = new ActiveXObject("Quorvane.SmsConstants");
var gateway = new ActiveXObject("Quorvane.SmsProtocolHttp");
gateway.ProviderHost = WScript.Arguments.Item(0);
gateway.ProviderPort = Number(WScript.Arguments.Item(1));
// The templates: a request as the provider describes it, from behind "host/", with a placeholder where the number and
// where the text stand. What follows "?" is posted. These are for a gateway that answers OK or ERROR; docs/http.md has
// all placeholders.
gateway.URLText = "send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%";
gateway.URLUnicode = "send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%";
gateway.ProviderSuccessResponse = "OK";
gateway.ProviderErrorResponse = "ERROR";
if (WScript.Arguments.length > 5) {
    gateway.ProviderWebAccount = WScript.Arguments.Item(4);
    gateway.ProviderWebPassword = WScript.Arguments.Item(5);
}

var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = WScript.Arguments.Item(2);
message.Data = WScript.Arguments.Item(3);
message.Format = beyondGsm.test(message.Data) ? constants.asMESSAGEFORMAT_UNICODE : constants.asMESSAGEFORMAT_TEXT;
gateway.Send(message);
if (gateway.LastError != 0) {
    WScript.Echo("Send failed: " + gateway.LastError + " " + gateway.GetErrorDescription(gateway.LastError));
    WScript.Quit(1);
}
WScript.Echo("Answer: " + gateway.ProviderResponse);
