#include "foundation/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Both characters of every 12-bit value, so that three octets take two look-ups.
constexpr auto kPairs = [] {
    std::array<std::array<char, 2>, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kDigits[i >> 6], kDigits[i & 63]};
    return pairs;
}();

char* EncodeGroups(const std::uint8_t* in, std::size_t groups, char* out) {
    for (; groups > 0; --groups, in += 3, out += 4) {
        const std::uint32_t bits = std::uint32_t{in[0]} << 16 | std::uint32_t{in[1]} << 8 | in[2];
        std::memcpy(out, kPairs[bits >> 12].data(), 2);
        std::memcpy(out + 2, kPairs[bits & 4095].data(), 2);
    }
    return out;
}

// One or two octets, padded.
char* EncodeRest(const std::uint8_t* in, std::size_t size, char* out) {
    const std::array<std::uint8_t, 3> group{in[0], size > 1 ? in[1] : std::uint8_t{0}, 0};
    out = EncodeGroups(group.data(), 1, out);
    std::fill(out - (3 - size), out, '=');
    return out;
}

}  // namespace

std::string base64::Encode(std::string_view octets, std::size_t lineLength) {
    const std::size_t size = (octets.size() + 2) / 3 * 4;
    const std::size_t line = lineLength == 0 ? std::max<std::size_t>(size, 4) : lineLength;
    const std::size_t breaks = lineLength == 0 ? 0 : (size + line - 1) / line;
    std::string text(size + 2 * breaks, '\0');
    const auto* in = reinterpret_cast<const std::uint8_t*>(octets.data());
    std::size_t left = octets.size();
    char* out = text.data();
    while (left > 0) {
        const std::size_t groups = std::min(left / 3, line / 4);
        out = EncodeGroups(in, groups, out);
        in += 3 * groups;
        left -= 3 * groups;
        if (left > 0 && left < 3 && groups < line / 4) {
            out = EncodeRest(in, left, out);
            left = 0;
        }
        if (lineLength != 0) {
            *out++ = '\r';
            *out++ = '\n';
        }
    }
    return text;
}
