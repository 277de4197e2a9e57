// The message formats: how each is coded on a wire, whether the phone shows it at once, whether it may take
// several parts, and how log lines call it.
#pragma once
#include <cstdint>
#include <string_view>

enum class Alphabet : std::uint8_t { kGsm, kOctets, kUcs2 };

struct MessageFormat {
    std::int32_t number;  // asMESSAGEFORMAT_...
    std::string_view name;
    Alphabet alphabet;
    bool flash;
    bool multipart;

    // The data coding scheme, 3GPP TS 23.038 chapter 4.
    constexpr std::uint8_t Dcs() const {
        if (alphabet == Alphabet::kOctets) return 0xF5;
        return static_cast<std::uint8_t>((alphabet == Alphabet::kUcs2 ? 0x08 : 0x00) | (flash ? 0x10 : 0x00));
    }
};

// Every other number is coded as plain text of one part and called "UNKNOWN".
const MessageFormat& FormatOf(std::int32_t number);

// Whether a message of that format can have this body: that of a data format is hexadecimal, two digits an
// octet and nothing between them. Otherwise the channels give 34034 and send nothing.
bool CanHold(const MessageFormat& format, std::u16string_view body);
