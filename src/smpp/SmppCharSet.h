// The character sets of SMPP short messages: SystemCharSet on the way out, data_coding on the way in.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace smppcharset {

// Bits of data_coding.
inline constexpr std::uint8_t kData = 0x04;
inline constexpr std::uint8_t kUcs2 = 0x08;

// The data_coding of a text in an asSMPPCHARSET_... character set.
std::uint8_t CodingOf(std::int32_t charSet);

// What an octet is by the data_coding of its message.
enum class Coding { kText, kData, kUcs2 };
Coding KindOf(std::uint8_t dataCoding);

// The default alphabet (coding 0) is the GSM alphabet when the set is asSMPPCHARSET_GSM; every other coding
// goes by itself.

// The octets of a text; a character that the coding lacks becomes "?".
std::string Encode(std::u16string_view text, std::uint8_t dataCoding, std::int32_t charSet);

// The text of received octets, one a character.
std::u16string Decode(std::u16string_view octets, std::uint8_t dataCoding, std::int32_t charSet);

}  // namespace smppcharset
