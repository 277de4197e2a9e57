#include "foundation/UrlText.h"

#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr std::size_t kEncodedSize = 3;

constexpr auto kUnreserved = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view("-._~")) table[static_cast<std::uint8_t>(c)] = true;
    for (char c = '0'; c <= '9'; ++c) table[static_cast<std::uint8_t>(c)] = true;
    for (char c = 'a'; c <= 'z'; ++c) {
        table[static_cast<std::uint8_t>(c)] = table[static_cast<std::uint8_t>(UpperChar(c))] = true;
    }
    return table;
}();

}  // namespace

void url::AppendEncoded(std::string& text, std::string_view octets) {
    const std::size_t start = text.size();
    text.resize(start + kEncodedSize * octets.size());
    char* out = text.data() + start;
    for (const char c : octets) {
        const auto octet = static_cast<std::uint8_t>(c);
        if (kUnreserved[octet]) {
            *out++ = c;
        } else {
            *out++ = '%';
            out = std::ranges::copy(hex::kPairs[octet], out).out;
        }
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}
