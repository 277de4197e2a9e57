// Prints the bodies that messages are encoded as over MM7, a JSON object a line, for independent parsers to
// read.
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <cstdio>

namespace {

bool Print(const char* kind, CMmsMessage& message) {
    message.Protocol = mms::asMMS_PROTOCOL_MM7;
    if (message.Encode() != result::Success) return false;
    std::printf("{\"kind\": \"%s\", \"id\": \"%s\", \"headers\": \"%s\", \"body\": \"%s\"}\n", kind,
                message.TransactionId.c_str(), hex::Of(message.Boundary).c_str(),
                hex::Of(message.EncodedMessage).c_str());
    return true;
}

// The octets count up, so that every size ends with another one and the larger ones hold them all.
std::string Counting(std::size_t size) {
    std::string octets(size, '\0');
    for (std::size_t i = 0; i < size; ++i) octets[i] = static_cast<char>(i + i / 256);
    return octets;
}

bool AddContents(CMmsMessage& message) {
    CMmsSlide slide;
    slide.AddText(u"Gr\u00FC\u00DFe");
    for (const std::size_t size : {0, 1, 2, 3, 56, 57, 58, 256, 300'000}) {
        slide.AddAttachmentData("size " + std::to_string(size) + ".jpg", Counting(size));
    }
    slide.AddAttachmentData("line ends.gif", "\r\n--\r\n\r\n.\r\n--");
    slide.AddAttachmentData("no type", "x");
    message.AddSlide(slide.Slide());
    CMmsSlide second;
    second.AddText(u"<second> & \u20AC");
    message.AddSlide(second.Slide());
    return true;
}

}  // namespace

int main() {
    CMmsMessage message;
    bool printed = AddContents(message) && message.AddRecipient("+31612345678", 0) == result::Success &&
                   Print("least", message);

    message.SetFrom("+31600000001");
    message.Subject = u"\u00DCber <\u20AC> & \"more\"";
    message.ValidityPeriod = 1440;
    message.Class = mms::asMMS_CLASS_AUTO;
    message.Priority = mms::asMMS_PRIORITY_HIGH;
    message.RequestDeliveryReport = true;
    message.RequestReadReceipt = true;
    message.Settings = {.schema = mms::asMMS_SCHEMA_REL6_MM7_1_4,
                        .version = mms::asMMS_VERSION_6_8_0,
                        .vaspId = "vasp <&>\r\n",
                        .vasId = "vas",
                        .serviceCode = "gold"};
    printed = message.AddRecipient("eve@example.org", 0) == result::Success && printed;
    printed = message.AddRecipient("ann@example.org", 1) == result::Success && printed;
    printed = message.AddRecipient("bob@example.org", 2) == result::Success && printed;
    printed = Print("most", message) && printed;
    return printed ? 0 : 1;
}
