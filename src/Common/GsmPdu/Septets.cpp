#include "Common/GsmPdu/Septets.h"

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "octets are taken eight at a time");

namespace septets {

std::size_t Pack(std::span<const std::uint8_t> codes, std::size_t headerOctets, std::uint8_t* octets) {
    std::uint8_t* out = octets;
    std::size_t i = 0;
    std::uint64_t bits = 0;
    std::size_t held = FillBits(headerOctets);
    for (; i + 8 <= codes.size(); i += 8, out += 7) {  // seven octets from eight codes
        std::uint64_t eight = 0;
        std::memcpy(&eight, &codes[i], sizeof eight);
        eight &= 0x7F7F7F7F7F7F7F7F;
        eight = (eight & 0x7F007F007F007F00) >> 1 | (eight & 0x007F007F007F007F);
        eight = (eight & 0x3FFF00003FFF0000) >> 2 | (eight & 0x00003FFF00003FFF);
        eight = (eight & 0x0FFFFFFF00000000) >> 4 | (eight & 0x000000000FFFFFFF);
        bits |= eight << held;
        std::memcpy(out, &bits, sizeof bits);  // the eighth octet is written again
        bits >>= 56;
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
    for (; i + 8 <= octets.size() && end - out >= 8; i += 7, out += 8) {  // eight codes from seven octets
        std::uint64_t bits = 0;
        std::memcpy(&bits, &octets[i], sizeof bits);
        bits >>= skip;
        bits = (bits & 0x00FFFFFFF0000000) << 4 | (bits & 0x000000000FFFFFFF);
        bits = (bits & 0x0FFFC0000FFFC000) << 2 | (bits & 0x00003FFF00003FFF);
        bits = (bits & 0x3F803F803F803F80) << 1 | (bits & 0x007F007F007F007F);
        std::memcpy(out, &bits, sizeof bits);
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
