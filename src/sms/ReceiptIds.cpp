#include "sms/ReceiptIds.h"

#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kLongestId = 65;
constexpr std::uint64_t kMix = 0x9E3779B97F4A7C15U;
constexpr std::uint32_t kNoDigit = 16;
constexpr std::uint64_t kWithoutCase = 0xDFDFDFDFDFDFDFDFU;  // alike for both cases of a letter

bool IsHexDigit(char c) { return IsDigit(c) || (UpperChar(c) >= 'A' && UpperChar(c) <= 'F'); }

std::string_view WithoutZeros(std::string_view id) {
    id = BareId(id);
    return id.substr(std::min(id.find_first_not_of('0'), id.empty() ? 0 : id.size() - 1));
}

// The number that digits of one base make, written in another base.
std::string Rebased(std::string_view digits, std::uint32_t from, std::uint32_t to) {
    std::vector<std::uint32_t> number;  // digits of the new base, the lowest first
    for (const char c : digits) {
        std::uint32_t carry = hex::Value(c);
        for (std::uint32_t& digit : number) {
            carry += digit * from;
            digit = carry % to;
            carry /= to;
        }
        for (; carry != 0; carry /= to) number.push_back(carry % to);
    }
    std::string text(std::max<std::size_t>(number.size(), 1), '0');
    std::ranges::transform(number, text.rbegin(), [](std::uint32_t digit) { return hex::kDigits[digit]; });
    return text;
}

bool IsOf(std::string_view id, bool (*isDigit)(char)) {
    return !id.empty() && id.size() <= kLongestId && std::ranges::all_of(id, isDigit);
}

}  // namespace

std::optional<std::string> HexOfDecimal(std::string_view decimal) {
    if (!IsOf(decimal, [](char c) { return IsDigit(c); })) return std::nullopt;
    return Rebased(decimal, 10, 16);
}

std::optional<std::string> DecimalOfHex(std::string_view hexadecimal) {
    if (!IsOf(hexadecimal, IsHexDigit)) return std::nullopt;
    return Rebased(hexadecimal, 16, 10);
}

std::string_view BareId(std::string_view id) {
    if (!id.empty() && (id.front() <= ' ' || id.back() <= ' ')) id = Trim(id);
    return id.size() > 2 && id[0] == '0' && UpperChar(id[1]) == 'X' ? id.substr(2) : id;
}

bool LooselyEqual(std::string_view left, std::string_view right) {
    return std::ranges::equal(WithoutZeros(left), WithoutZeros(right), {}, UpperChar, UpperChar);
}

std::size_t SignificantLength(std::string_view id) { return WithoutZeros(id).size(); }

std::uint32_t LooseHash(std::string_view id) {
    id = WithoutZeros(id);
    const std::uint32_t last = !id.empty() && IsHexDigit(id.back()) ? hex::Value(id.back()) : kNoDigit;
    if (last != kNoDigit) id.remove_suffix(1);
    std::uint64_t hash = id.size();
    for (; !id.empty(); id.remove_prefix(std::min(id.size(), sizeof hash))) {
        std::uint64_t octets = 0;
        std::memcpy(&octets, id.data(), std::min(id.size(), sizeof octets));
        hash = (hash ^ (octets & kWithoutCase)) * kMix;
        hash ^= hash >> 32;
    }
    hash *= kMix;  // the highest bits depend on all octets
    return static_cast<std::uint32_t>(hash >> 32 & ~15U) | (last & 15U);
}
