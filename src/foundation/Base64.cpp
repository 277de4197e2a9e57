#include "foundation/Base64.h"

#include "foundation/Text.h"

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

// Eight octets, the first one the most significant.
std::uint64_t Word(const std::uint8_t* in) {
    std::uint64_t word = 0;
    for (int i = 0; i < 8; ++i) word = word << 8 | in[i];
    return word;
}

char* EncodeGroups(const std::uint8_t* in, std::size_t groups, char* out) {
    for (; groups > 2; groups -= 2, in += 6, out += 8) {  // a third group, so that eight octets can be read
        const std::uint64_t bits = Word(in);
        std::memcpy(out, kPairs[bits >> 52].data(), 2);
        std::memcpy(out + 2, kPairs[bits >> 40 & 4095].data(), 2);
        std::memcpy(out + 4, kPairs[bits >> 28 & 4095].data(), 2);
        std::memcpy(out + 6, kPairs[bits >> 16 & 4095].data(), 2);
    }
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

std::size_t base64::EncodedSize(std::size_t octets, std::size_t lineLength) {
    const std::size_t size = (octets + 2) / 3 * 4;
    return lineLength == 0 ? size : size + 2 * ((size + lineLength - 1) / lineLength);
}

std::string base64::Encode(std::string_view octets, std::size_t lineLength) {
    std::string text;
    Append(text, octets, lineLength);
    return text;
}

void base64::Append(std::string& text, std::string_view octets, std::size_t lineLength) {
    const std::size_t before = text.size();
    text.resize(before + EncodedSize(octets.size(), lineLength));
    const auto* in = reinterpret_cast<const std::uint8_t*>(octets.data());
    const std::size_t groupsInLine = lineLength == 0 ? octets.size() / 3 + 1 : lineLength / 4;
    std::size_t left = octets.size();
    char* out = text.data() + before;
    while (left > 0) {
        const std::size_t groups = std::min(left / 3, groupsInLine);
        out = EncodeGroups(in, groups, out);
        in += 3 * groups;
        left -= 3 * groups;
        if (left > 0 && left < 3 && groups < groupsInLine) {
            out = EncodeRest(in, left, out);
            left = 0;
        }
        if (lineLength != 0) {
            *out++ = '\r';
            *out++ = '\n';
        }
    }
}

std::optional<std::string> base64::Decode(std::string_view text) {
    constexpr int kLongestPadding = 2;
    std::string_view digits = Trim(text);
    for (int i = 0; i < kLongestPadding && digits.ends_with('='); ++i) digits.remove_suffix(1);
    if (digits.size() % 4 == 1) return std::nullopt;
    std::string octets;
    octets.reserve(digits.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    int count = 0;  // of bits that are no whole octet yet
    for (const char c : digits) {
        const std::size_t value = kDigits.find(c);
        if (value == std::string_view::npos) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        octets.push_back(static_cast<char>(bits >> count));
        bits &= (1U << count) - 1;
    }
    return octets;
}
