#include "http/HttpSubmit.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "foundation/Addresses.h"
#include "foundation/CharacterSets.h"
#include "foundation/CodePage.h"
#include "foundation/Hex.h"

#include <algorithm>
#include <array>

namespace {

// The formats that are sent; none of them takes several messages.
constexpr auto kFormats = std::to_array<std::int32_t>({
    sms::asMESSAGEFORMAT_TEXT,
    sms::asMESSAGEFORMAT_DATA,
    sms::asMESSAGEFORMAT_DATA_UDH,
    sms::asMESSAGEFORMAT_UNICODE,
});

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

std::string GsmCodes(std::u16string_view text) {
    std::string codes(2 * text.size(), '\0');
    codes.resize(CGsmAlphabet::Encode(text, reinterpret_cast<std::uint8_t*>(codes.data())));
    return codes;
}

// The fields as far as the message gives them.
ResultCode ReadMessage(const CSmsMessageX& message, HttpFields& fields) {
    if (!address::IsNumber(message.Recipient)) return result::InvalidRecipient;
    if (std::ranges::find(kFormats, message.Format) == kFormats.end()) return result::InvalidFormat;
    const MessageFormat& format = FormatOf(message.Format);
    fields.recipient = message.Recipient;
    fields.sender = message.Sender;
    fields.body = message.Data;
    fields.alphabet = format.alphabet;
    fields.dcs = format.Dcs();
    fields.hasHeader = message.Format == sms::asMESSAGEFORMAT_DATA_UDH;
    if (format.alphabet == Alphabet::kOctets) {
        if (!hex::IsText(std::u16string_view(message.Data))) return result::InvalidFormat;
        const std::string octets = hex::OctetsOf(std::u16string_view(message.Data));
        fields.body.resize(octets.size());
        std::ranges::transform(octets, fields.body.begin(),
                               [](char c) { return static_cast<std::uint8_t>(c); });
    }
    return result::Success;
}

ResultCode ApplyCharset(const std::string& charset, HttpFields& fields) {
    const CharacterSet* set = FindCharacterSet(charset);
    if (set == nullptr && !charset.empty()) return result::InvalidFormat;
    if (set != nullptr) fields.sender = set->encode(FromAnsi(fields.sender));
    if (fields.alphabet == Alphabet::kGsm) {
        fields.text = set != nullptr ? set->encode(fields.body) : GsmCodes(fields.body);
    }
    return result::Success;
}

}  // namespace

ResultCode BuildHttpRequest(const HttpProviderSettings& settings, const CSmsMessageX& message,
                            HttpRequest& request) {
    HttpFields fields;
    if (const ResultCode code = ReadMessage(message, fields); code != result::Success) return code;
    if (const ResultCode code = ApplyCharset(settings.charset, fields); code != result::Success) return code;
    const Coding& coding = *std::ranges::find(kCodings, fields.alphabet, &Coding::alphabet);
    const std::string& urlTemplate = settings.*coding.urlTemplate;
    if (urlTemplate.empty()) return coding.missing;
    if (fields.body.size() > coding.longest) return result::MessageTooLong;
    std::string text = settings.host;
    if (settings.port != 0) text += ':' + std::to_string(settings.port);
    request = FillHttpTemplate(text + '/' + urlTemplate, fields);
    return result::Success;
}
