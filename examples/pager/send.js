// Sends one page through a paging server.
var whole = /^\d{1,9}$/;
if (WScript.Arguments.length < 4 || !whole.test(WScript.Arguments.Item(1))) {
    WScript.Echo('cscript send.js 127.0.0.1 4444 5551212 "The text" [password]');
    WScript.Quit(2);
}
var pager = new ActiveXObject("Quorvane.PagerProtocolSnpp");
pager.Server = WScript.Arguments.Item(0);
pager.ServerPort = Number(WScript.Arguments.Item(1));
if (WScript.Arguments.length > 4) pager.ProviderPassword = WScript.Arguments.Item(4);

var message = new ActiveXObject("Quorvane.PagerMessage");
message.Recipient = WScript.Arguments.Item(2);
message.Data = WScript.Arguments.Item(3);
pager.Send(message);
if (pager.LastError != 0) {
    WScript.Echo("Send failed: " + pager.LastError + " " + pager.GetErrorDescription(pager.LastError));
    WScript.Quit(1);
}
WScript.Echo("Answer: " + pager.ProviderResponse);
