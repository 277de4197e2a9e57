#include "gsm/Septets.h"

namespace septets {

std::size_t Pack(std::span<const std::uint8_t> codes, std::size_t headerOctets, std::uint8_t* octets) {
    std::uint8_t* out = octets;
    std::size_t i = 0;
    std::uint64_t bits = 0;
    std::size_t held = FillBits(headerOctets);
    if (held == 0) {
        for (; i + 8 <= codes.size(); i += 8) {  // eight codes make seven octets
            for (std::size_t k = 0; k < 8; ++k) bits |= static_cast<std::uint64_t>(codes[i + k] & 0x7FU) << (7 * k);
            for (std::size_t k = 0; k < 7; ++k) *out++ = static_cast<std::uint8_t>(bits >> (8 * k));
            bits = 0;
        }
    }
    for (; i < codes.size(); ++i) {
        bits |= static_cast<std::uint64_t>(codes[i] & 0x7FU) << held;
        held += 7;
        if (held >= 8) {
            *out++ = static_cast<std::uint8_t>(bits);
            bits >>= 8;
            held -= 8;
        }
    }
    if (held > 0 && !codes.empty()) *out++ = static_cast<std::uint8_t>(bits);
    return static_cast<std::size_t>(out - octets);
}

std::size_t Unpack(std::span<const std::uint8_t> octets, std::size_t headerOctets, std::size_t maximum,
                   std::uint8_t* codes) {
    std::uint8_t* out = codes;
    std::uint8_t* const end = codes + maximum;
    std::size_t i = 0;
    std::size_t skip = FillBits(headerOctets);
    if (skip == 0) {
        for (; i + 7 <= octets.size() && end - out >= 8; i += 7) {
            std::uint64_t bits = 0;
            for (std::size_t k = 0; k < 7; ++k) bits |= static_cast<std::uint64_t>(octets[i + k]) << (8 * k);
            for (std::size_t k = 0; k < 8; ++k) *out++ = static_cast<std::uint8_t>(bits >> (7 * k) & 0x7F);
        }
    }
    std::uint32_t bits = 0;
    std::size_t held = 0;
    for (; i < octets.size() && out < end; ++i) {
        bits |= static_cast<std::uint32_t>(octets[i]) << held;
        held += 8;
        if (skip > 0) {
            bits >>= skip;
            held -= skip;
            skip = 0;
        }
        while (held >= 7 && out < end) {
            *out++ = static_cast<std::uint8_t>(bits & 0x7F);
            bits >>= 7;
            held -= 7;
        }
    }
    return static_cast<std::size_t>(out - codes);
}

}  // namespace septets
