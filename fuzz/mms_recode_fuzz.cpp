// A unit that is decoded, encoded and decoded again says the same of everything that our encoder writes.
#include "Fuzz.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Utf8.h"
#include "mms/MmsMessage.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::size_t kMostParts = 126;

void Require(bool holds) {
    if (!holds) std::abort();
}

// Texts go out without the quote that one with such a beginning would need.
bool IsPlain(std::string_view text) { return text.empty() || (text[0] >= ' ' && text[0] < 0x7F); }
bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}
bool IsAddress(const std::string& text) {
    return IsPlain(text) && IsAscii(text) && text.find("/TYPE=") == std::string::npos;
}
// A plain text that begins with the quote loses it; halves of pairs are no characters.
bool IsSubject(const std::u16string& text) {
    return !text.starts_with(u'\x7F') && FromUtf8(ToUtf8(text)) == text;
}

bool CanComeBack(const CMmsMessage& message) {
    const std::vector<CMmsMessagePart>& parts = message.Slides[0].parts;
    return IsSubject(message.Subject) && message.From.size() < 254 && IsAddress(message.From) &&
           parts.size() <= kMostParts &&
           std::ranges::all_of(
               message.Recipients,
               [](const CMmsRecipients& list) { return std::ranges::all_of(list.Addresses(), IsAddress); }) &&
           std::ranges::all_of(parts, [](const CMmsMessagePart& part) {
               return !part.contentType.empty() && IsPlain(part.contentType) &&
                      IsPlain(part.contentLocation) && !part.contentLocation.starts_with('"') &&
                      IsPlain(part.drmBoundary) && !part.drmBoundary.starts_with('"');
           });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    VirtualClock clock;
    CMmsMessage message(clock);
    message.EncodedMessage = TextOf(data, size);
    (void)message.Decode();
    if (message.Encode() != result::Success) return 0;
    CMmsMessage again(clock);
    again.EncodedMessage = message.EncodedMessage;
    const ResultCode code = again.Decode();
    if (!CanComeBack(message)) return 0;
    Require(code == result::Success);
    Require(again.From == message.From && again.Subject == message.Subject);
    Require(again.TransactionId == message.TransactionId && again.Class == message.Class);
    Require(again.Priority == message.Priority && again.CustomSmil == message.Smil.data);
    Require(again.RequestDeliveryReport == message.RequestDeliveryReport);
    Require(again.RequestReadReceipt == message.RequestReadReceipt);
    for (std::size_t list = 0; list < message.Recipients.size(); ++list) {
        Require(again.Recipients[list].Addresses() == message.Recipients[list].Addresses());
    }
    const std::vector<CMmsMessagePart>& parts = message.Slides[0].parts;
    const std::vector<CMmsMessagePart>& back = again.Slides[0].parts;
    Require(back.size() == parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        Require(back[i].contentType == parts[i].contentType && back[i].data == parts[i].data);
        Require(back[i].contentLocation == parts[i].contentLocation);
    }
    return 0;
}
