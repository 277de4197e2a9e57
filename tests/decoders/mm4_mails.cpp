// Prints the mails that messages are encoded as for MM4, a JSON object a line, for an independent reader.
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <cstdio>
#include <string>

namespace {

bool Print(const char* kind, CMmsMessage& message) {
    message.Protocol = mms::asMMS_PROTOCOL_MM4;
    if (message.Encode() != result::Success) return false;
    std::printf("{\"kind\": \"%s\", \"id\": \"%s\", \"mail\": \"%s\"}\n", kind, message.TransactionId.c_str(),
                hex::Of(message.EncodedMessage).c_str());
    return true;
}

// Octets of every value, `size` of them.
std::string Every(std::size_t size) {
    std::string octets;
    for (std::size_t i = 0; i < size; ++i) octets += static_cast<char>(i + i / 256);
    return octets;
}

}  // namespace

int main() {
    CMmsMessage message;
    bool printed = message.AddRecipient("31612345678", 0) == result::Success;
    CMmsSlide slide;
    for (const std::size_t size : {0U, 1U, 2U, 3U, 56U, 57U, 58U, 300'000U}) {
        slide.AddAttachmentData(std::to_string(size) + ".jpg", Every(size));
    }
    message.AddSlide(slide.Slide());
    printed = Print("sizes", message) && printed;

    message.SetFrom("J\xf6rg <joerg@example.org>");
    message.Subject =
        u"Gr\u00fc\u00dfe \U0001F600 und noch viel mehr, was in eine Zeile nicht hineinpa\u00dft";
    message.RequestReadReceipt = true;
    printed = message.AddRecipient("eve@example.org", 1) == result::Success && printed;
    printed = message.AddRecipient("bob@example.org", 2) == result::Success && printed;
    message.Slides.clear();
    CMmsSlide other;
    other.AddText(u"Gr\u00fc\u00dfe");
    other.AddAttachmentData("B\xe4r \"1\".gif", "GIF");
    message.AddSlide(other.Slide());
    printed = Print("names", message) && printed;

    message.From = "a@b\r\n\r\n.\r\nBcc: c@d";
    message.Subject = u"one\r\nBcc: two\n.\n";
    printed = Print("lines", message) && printed;
    return printed ? 0 : 1;
}
