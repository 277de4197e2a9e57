// Prints the units that messages are encoded as, a JSON object a line, for an independent decoder to read.
// The folder it runs in has a photo.jpg.
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "mms/Mm1Reply.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <cstdio>

namespace {

void Print(const char* kind, const std::string& transactionId, const std::string& unit) {
    std::printf("{\"kind\": \"%s\", \"id\": \"%s\", \"unit\": \"%s\"}\n", kind, transactionId.c_str(),
                hex::Of(unit).c_str());
}

bool Encode(const char* kind, CMmsMessage& message) {
    if (message.Encode() != result::Success) return false;
    Print(kind, message.TransactionId, message.EncodedMessage);
    return true;
}

bool AddContents(CMmsMessage& message) {
    CMmsSlide slide;
    slide.AddText(u"Gr\u00FC\u00DFe");
    slide.AddAttachmentData("photo.jpg", "\xFF\xD8\xFF\xE0");
    slide.AddAttachmentData("sound.mp4", "mp4");
    slide.Protect({mms::asMMS_DRM_DISPLAY, 3, 0, "", ""});
    const bool added = slide.AddAttachment("photo.jpg") == result::Success;
    message.AddSlide(slide.Slide());
    return added;
}

}  // namespace

int main() {
    CMmsMessage message;
    bool printed = AddContents(message) && message.AddRecipient("+31612345678", 0) == result::Success &&
                   Encode("least", message);

    message.SetFrom("+31600000001");
    message.Subject = u"Photo";
    message.ValidityPeriod = 1440;
    message.Class = mms::asMMS_CLASS_AUTO;
    message.Priority = mms::asMMS_PRIORITY_HIGH;
    message.RequestDeliveryReport = true;
    message.RequestReadReceipt = true;
    printed = message.AddRecipient("eve@example.org", 0) == result::Success && printed;
    printed = message.AddRecipient("10.0.0.1", 1) == result::Success && printed;
    printed = message.AddRecipient("bob@example.org", 2) == result::Success && printed;
    printed = Encode("most", message) && printed;

    message.FileFormat = mms::asMMS_MM1FILE_MRETRIEVECONF;
    message.Subject = u"\u00DCber \u20AC";
    printed = Encode("retrieved", message) && printed;
    message.Subject = u"\u00C4234567890123456789012345678901234567";  // behind a length quote
    printed = Encode("long subject", message) && printed;

    message.From = std::string(28, 'f');  // its length octet is 30, the last that is a length to everyone
    printed = Encode("long sender", message) && printed;

    Print("acknowledged", "r7", AcknowledgeInd("r7"));
    Print("notified", "n1", NotifyRespInd("n1"));
    return printed ? 0 : 1;
}
