#include "foundation/Addresses.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestAddress = 64;

bool IsOneOf(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

}  // namespace

Recipient ParseRecipient(std::string_view text) {
    if (text.size() > 2 && text[2] == ':') return {std::string(text), 0};
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return {std::string(text), 0};
    return {std::string(text.substr(0, colon)), static_cast<std::uint32_t>(ToInt(text.substr(colon + 1)))};
}

bool address::IsNumber(std::string_view text) {
    constexpr std::size_t kShortest = 4;
    if (text.find("dl:") != std::string_view::npos) return true;
    return text.size() >= kShortest && text.size() <= kLongestAddress &&
           std::ranges::all_of(text.substr(1), [](char c) { return IsDigit(c) || c == ':'; });
}

bool address::IsSenderNumber(std::string_view text) {
    if (!IsNumber(text)) return false;
    return IsDigit(text.front()) || IsOneOf(kPrefixes, text.front()) ||
           text.find("dl:") != std::string_view::npos;
}

ResultCode address::CheckNumber(std::string_view text) {
    if (!IsNumber(text)) return result::InvalidRecipient;
    if (text.find("dl:") != std::string_view::npos) return result::Success;
    const char first = text.front();
    const bool letter = UpperChar(first) >= 'A' && UpperChar(first) <= 'Z';
    return letter && !IsOneOf(kPrefixes, first) ? result::RecipientPrefixMissing : result::Success;
}

bool address::IsPduNumber(std::string_view text) {
    if (text.size() < 3 || text.size() > 20 || text.starts_with("00")) return false;
    return (IsDigit(text.front()) || IsOneOf(kPrefixes, text.front())) &&
           std::ranges::all_of(text.substr(1), IsDigit);
}

bool address::IsDialNumber(std::string_view text) {
    constexpr std::size_t kLongest = 32;
    return !text.empty() && text.size() <= kLongest && std::ranges::all_of(text, [](char c) {
        return IsDigit(c) || IsOneOf(" ,+-*#@ABCDW", UpperChar(c));
    });
}

bool address::IsIPv4(std::string_view text) {
    const auto fields = Split(text, ".");
    return fields.size() == 4 && std::ranges::all_of(fields, [](std::string_view field) {
               return !field.empty() && std::ranges::all_of(field, IsDigit) && ToInt(field) <= 255;
           });
}

bool address::IsMail(std::string_view text) {
    const std::size_t at = text.find('@');
    if (text.size() > kLongestAddress || at == 0 || at == std::string_view::npos || at + 1 == text.size()) {
        return false;
    }
    return std::ranges::all_of(text,
                               [](char c) { return c > ' ' && c < 0x7F && !IsOneOf("\"(),:;<>[\\]|", c); });
}
