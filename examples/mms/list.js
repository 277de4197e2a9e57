// Loads a saved or received multimedia message, lists what is in it and saves its attachments.
if (WScript.Arguments.length < 1) {
    WScript.Echo("cscript list.js message.mms [folder for the attachments]");
    WScript.Quit(2);
}
var constants = new ActiveXObject("Quorvane.MmsConstants");
var message = new ActiveXObject("Quorvane.MmsMessage");
message.LoadFromFile(WScript.Arguments.Item(0));
if (message.LastError != 0) {
    WScript.Echo("Failed: " + message.LastError + " " + message.GetErrorDescription(message.LastError));
    WScript.Quit(1);
}
WScript.Echo("From: " + message.From);
WScript.Echo("Subject: " + message.Subject);

// Directly after GetFirstRecipient, GetNextRecipient gives the first one again: so it is enough to begin with it.
message.GetFirstRecipient(constants.asMMS_RECIPIENT_TO);
for (;;) {
    var recipient = message.GetNextRecipient(constants.asMMS_RECIPIENT_TO);
    if (message.LastError != 0) break;
    WScript.Echo("To: " + recipient);
}

// The octets of UTF-8, one a character and a zero at the end, as text.
function fromUtf8(octets) {
    return decodeURIComponent(escape(octets.replace(/\0$/, "")));
}

var failed = 0;
for (var slide = message.GetFirstSlide(); message.LastError == 0; slide = message.GetNextSlide()) {
    for (var i = 0; i < slide.GetTextCount(); ++i) WScript.Echo("Text: " + fromUtf8(slide.GetText(i)));
    for (i = 0; i < slide.CountAttachments(); ++i) {
        var name = slide.GetAttachmentName(i);
        WScript.Echo("Attachment: " + name);
        if (WScript.Arguments.length < 2) continue;
        // The sender chose the name: only its extension goes into the name of a file.
        var extension = /\.[A-Za-z0-9]{1,8}$/.exec(name);
        var file = WScript.Arguments.Item(1) + "\\attachment" + (i + 1) + (extension ? extension[0] : "");
        slide.SaveAttachment(i, file);
        if (slide.LastError == 0) {
            WScript.Echo("Saved: " + file);
        } else {
            WScript.Echo("Not saved: " + slide.GetErrorDescription(slide.LastError));
            ++failed;
        }
    }
}
WScript.Quit(failed == 0 ? 0 : 1);
