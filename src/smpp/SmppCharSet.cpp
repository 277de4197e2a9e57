#include "smpp/SmppCharSet.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "foundation/CodePage.h"
#include "sms/SmsConstants.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::uint8_t kDefaultAlphabet = 0x00;
constexpr std::uint8_t kCyrillic = 0x06;
constexpr std::uint8_t kHebrew = 0x07;
constexpr char16_t kNone = 0xFFFF;

// The characters of the octets from 0x80 up.
using UpperHalf = std::array<char16_t, 128>;

constexpr void Fill(UpperHalf& half, unsigned first, unsigned last, unsigned character) {
    for (unsigned octet = first; octet <= last; ++octet)
        half[octet - 0x80] = static_cast<char16_t>(character + (octet - first));
}

constexpr UpperHalf kIso8859Part5 = [] {
    UpperHalf half{};
    Fill(half, 0x80, 0xA0, 0x80);
    Fill(half, 0xA1, 0xFF, 0x0401);
    Fill(half, 0xAD, 0xAD, 0xAD);    // soft hyphen
    Fill(half, 0xF0, 0xF0, 0x2116);  // numero sign
    Fill(half, 0xFD, 0xFD, 0xA7);    // section sign
    return half;
}();

constexpr UpperHalf kIso8859Part8 = [] {
    UpperHalf half{};
    half.fill(kNone);
    Fill(half, 0x80, 0xA0, 0x80);
    Fill(half, 0xA2, 0xBE, 0xA2);
    Fill(half, 0xAA, 0xAA, 0xD7);    // multiplication sign
    Fill(half, 0xBA, 0xBA, 0xF7);    // division sign
    Fill(half, 0xDF, 0xDF, 0x2017);  // double low line
    Fill(half, 0xE0, 0xFA, 0x05D0);
    Fill(half, 0xFD, 0xFE, 0x200E);  // marks of direction
    return half;
}();

const UpperHalf* HalfOf(std::uint8_t coding) {
    if (coding == kCyrillic) return &kIso8859Part5;
    return coding == kHebrew ? &kIso8859Part8 : nullptr;
}

bool IsGsm(std::uint8_t coding, std::int32_t charSet) {
    return coding == kDefaultAlphabet && charSet == sms::asSMPPCHARSET_GSM;
}

}  // namespace

std::uint8_t smppcharset::CodingOf(std::int32_t charSet) {
    constexpr std::array<std::uint8_t, 8> kCodings{0x00, 0x00, 0x01, 0x03, 0x05, kCyrillic, kHebrew, 0x0A};
    return charSet >= 0 && charSet < 8 ? kCodings[static_cast<std::size_t>(charSet)] : kDefaultAlphabet;
}

smppcharset::Coding smppcharset::KindOf(std::uint8_t dataCoding) {
    if ((dataCoding & kUcs2) != 0) return Coding::kUcs2;
    return (dataCoding & kData) != 0 && HalfOf(dataCoding) == nullptr ? Coding::kData : Coding::kText;
}

std::string smppcharset::Encode(std::u16string_view text, std::uint8_t dataCoding, std::int32_t charSet) {
    if (IsGsm(dataCoding, charSet)) {
        std::string codes(2 * text.size(), '\0');
        codes.resize(CGsmAlphabet::Encode(text, reinterpret_cast<std::uint8_t*>(codes.data())));
        return codes;
    }
    const UpperHalf* half = HalfOf(dataCoding);
    if (half == nullptr) return ToAnsi(text);
    std::string octets(text.size(), '?');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto* const place = std::ranges::find(*half, text[i]);
        if (text[i] < 0x80) {
            octets[i] = static_cast<char>(text[i]);
        } else if (place != half->end() && text[i] != kNone) {
            octets[i] = static_cast<char>(0x80 + (place - half->begin()));
        }
    }
    return octets;
}

std::u16string smppcharset::Decode(std::u16string_view octets, std::uint8_t dataCoding,
                                   std::int32_t charSet) {
    if (IsGsm(dataCoding, charSet)) {
        const std::vector<std::uint8_t> codes(octets.begin(), octets.end());
        std::u16string text(codes.size(), u'\0');
        text.resize(CGsmAlphabet::Decode(codes, text.data()));
        return text;
    }
    std::u16string text(octets);
    if (const UpperHalf* half = HalfOf(dataCoding)) {
        for (char16_t& c : text) {
            if (c < 0x80) continue;
            const char16_t upper = (*half)[c & 0x7F];
            c = upper == kNone ? u'?' : upper;
        }
    }
    return text;
}
