// Fetches the multimedia messages whose notifications lie in a modem, and saves each as a file.
// A modem that is given as a port only has its notifications read, and the connection of the machine is used; one that
// is given by its name in Windows also dials. examples/mms/list.js shows what is in a file.
if (WScript.Arguments.length < 3) {
    WScript.Echo("cscript receive.js provider.ini COM5 C:\\pictures");
    WScript.Quit(2);
}
var constants = new ActiveXObject("Quorvane.MmsConstants");
var mm1 = new ActiveXObject("Quorvane.MmsProtocolMm1");
mm1.ProviderLoadConfig(WScript.Arguments.Item(0));
check();
mm1.Device = WScript.Arguments.Item(1);
if (/^COM\d+:?$/i.test(mm1.Device)) mm1.AdvancedSettings = "UseExistingConnection=1";

// All notifications first: while a connection is dialled, the modem tells nothing.
var locations = [];
for (var notification = mm1.GetFirstMessage(); mm1.LastError == 0; notification = mm1.GetNextMessage()) {
    var location = /\bURL=(\S+)/.exec(notification.Data);
    if (location) locations.push(location[1]);
}
if (mm1.LastError != 33060) check();  // 33060: no more messages
WScript.Echo(locations.length + " waiting");

mm1.Connect();
check();
var failed = 0;
for (var i = 0; i < locations.length; ++i) {
    var message = mm1.Retrieve(locations[i]);
    if (mm1.LastError != 0) {
        WScript.Echo(locations[i] + ": " + mm1.LastError + " " + mm1.GetErrorDescription(mm1.LastError));
        ++failed;
        continue;
    }
    var file = WScript.Arguments.Item(2) + "\\message" + (i + 1) + ".mms";
    message.SaveToFile(file, constants.asMMS_MM1FILE_MRETRIEVECONF);
    WScript.Echo("From " + message.From + ": " + message.Subject);
    if (message.LastError == 0) {
        WScript.Echo("Saved: " + file);
    } else {
        WScript.Echo("Not saved: " + message.GetErrorDescription(message.LastError));
        ++failed;
    }
}
mm1.Disconnect();
WScript.Quit(failed == 0 ? 0 : 1);

function check() {
    if (mm1.LastError == 0) return;
    WScript.Echo("Failed: " + mm1.LastError + " " + mm1.GetErrorDescription(mm1.LastError));
    WScript.Quit(1);
}
