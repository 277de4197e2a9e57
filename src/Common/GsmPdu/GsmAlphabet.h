// The GSM 7-bit default alphabet and its escape extension, 3GPP TS 23.038 section 6.2.1.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class CGsmAlphabet {
  public:
    static constexpr std::uint8_t kEscape = 0x1B;
    static constexpr std::uint8_t kNoMapping = 0xFF;

    // Writes the GSM codes of the text, an escaped character as two, and returns their number. `codes` has
    // room for twice the text. A character without a code is dropped.
    static std::size_t Encode(std::u16string_view text, std::uint8_t* codes);

    // Writes the characters of the codes and returns their number. An escape followed by an unknown code
    // drops both.
    static std::size_t Decode(std::span<const std::uint8_t> codes, char16_t* text);

    // One look-up in the tables, without the escape extension. GsmToChar takes the low 7 bits.
    static std::uint8_t GsmToChar(std::uint8_t code);
    static std::uint8_t CharToGsm(std::uint8_t character);
};
