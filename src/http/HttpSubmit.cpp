#include "http/HttpSubmit.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "foundation/Addresses.h"
#include "foundation/CharacterSets.h"
#include "foundation/CodePage.h"
#include "foundation/Hex.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// The formats that are sent; none of them takes several messages.
constexpr auto kFormats = std::to_array<std::int32_t>({
    sms::asMESSAGEFORMAT_TEXT,
    sms::asMESSAGEFORMAT_DATA,
    sms::asMESSAGEFORMAT_DATA_UDH,
    sms::asMESSAGEFORMAT_UNICODE,
});

constexpr std::size_t kPortRoom = 16;  // characters of ":8080/" at the most

// What depends on the alphabet.
struct Coding {
    Alphabet alphabet;
    std::string HttpProviderSettings::*urlTemplate;
    ResultCode missing;
    std::size_t longest;  // characters
};
constexpr auto kCodings = std::to_array<Coding>({
    {Alphabet::kGsm, &HttpProviderSettings::urlText, result::HttpNoTextTemplate, 160},
    {Alphabet::kOctets, &HttpProviderSettings::urlBinary, result::HttpNoDataTemplate, 140},
    {Alphabet::kUcs2, &HttpProviderSettings::urlUnicode, result::HttpNoUnicodeTemplate, 70},
});

// What a message becomes before it stands in a request.
struct Converted {
    std::string sender, text;
    std::u16string octets;
};

void ReadOctets(std::u16string_view digits, std::u16string& octets) {
    const std::string read = hex::OctetsOf(digits);
    octets.resize(read.size());
    std::ranges::transform(read, octets.begin(), [](char c) { return static_cast<std::uint8_t>(c); });
}

std::string GsmCodes(std::u16string_view text) {
    std::string codes(2 * text.size(), '\0');
    codes.resize(CGsmAlphabet::Encode(text, reinterpret_cast<std::uint8_t*>(codes.data())));
    return codes;
}

// The fields as far as the message gives them.
ResultCode ReadMessage(const CSmsMessageX& message, Converted& converted, HttpFields& fields) {
    if (!address::IsNumber(message.Recipient)) return result::InvalidRecipient;
    if (std::ranges::find(kFormats, message.Format) == kFormats.end()) return result::InvalidFormat;
    const MessageFormat& format = FormatOf(message.Format);
    fields.recipient = message.Recipient;
    fields.sender = message.Sender;
    fields.body = message.Data;
    fields.alphabet = format.alphabet;
    fields.dcs = format.Dcs();
    fields.hasHeader = message.Format == sms::asMESSAGEFORMAT_DATA_UDH;
    if (!CanHold(format, fields.body)) return result::InvalidFormat;
    if (format.alphabet == Alphabet::kOctets) {
        ReadOctets(fields.body, converted.octets);
        fields.body = converted.octets;
    }
    return result::Success;
}

ResultCode ApplyCharset(const std::string& charset, Converted& converted, HttpFields& fields) {
    const CharacterSet* set = charset.empty() ? nullptr : FindCharacterSet(charset);
    if (set == nullptr && !charset.empty()) return result::InvalidFormat;
    if (set != nullptr) fields.sender = converted.sender = set->encode(FromAnsi(fields.sender));
    if (fields.alphabet == Alphabet::kGsm) {
        fields.text = converted.text = set != nullptr ? set->encode(fields.body) : GsmCodes(fields.body);
    }
    return result::Success;
}

}  // namespace

ResultCode BuildHttpRequest(const HttpProviderSettings& settings, const CSmsMessageX& message,
                            HttpRequest& request) {
    Converted converted;
    HttpFields fields;
    ResultCode code = ReadMessage(message, converted, fields);
    if (code == result::Success) code = ApplyCharset(settings.charset, converted, fields);
    if (code != result::Success) return code;
    const Coding& coding = *std::ranges::find(kCodings, fields.alphabet, &Coding::alphabet);
    const std::string& urlTemplate = settings.*coding.urlTemplate;
    if (urlTemplate.empty()) return coding.missing;
    if (fields.body.size() > coding.longest) return result::MessageTooLong;
    std::string text;
    text.reserve(settings.host.size() + kPortRoom + urlTemplate.size());
    text += std::string_view(settings.host).substr(0, settings.host.find_last_not_of('/') + 1);
    if (settings.port != 0) text += ':' + std::to_string(settings.port);
    text += '/';
    text += urlTemplate;
    request = FillHttpTemplate(std::move(text), fields);
    return result::Success;
}
