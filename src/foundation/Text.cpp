#include "foundation/Text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kUsualPieces = 16;  // that Split makes room for at first

constexpr bool SameNoCase(char a, char b) { return UpperChar(a) == UpperChar(b); }

template <class Find>
void Replace(std::string& text, std::string_view from, std::string_view to, Find find) {
    if (from.empty()) return;
    std::size_t at = find(text, 0);
    if (at == std::string::npos) return;
    std::string out;
    out.reserve(text.size());
    std::size_t start = 0;
    for (; at != std::string::npos; at = find(text, start)) {
        out.append(text, start, at - start).append(to);
        start = at + from.size();
    }
    out.append(text, start);
    text = std::move(out);
}

}  // namespace

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string OneLine(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(
        line, [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return line;
}

std::string Upper(std::string_view text) {
    std::string out(text);
    std::ranges::transform(out, out.begin(), UpperChar);
    return out;
}

std::string OnlyDigits(std::string_view text) {
    std::string out(text);
    std::erase_if(out, [](char c) { return !IsDigit(c); });
    return out;
}

bool StartsNoCase(std::string_view text, std::string_view beginning) {
    return text.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), text.begin(), SameNoCase);
}

std::size_t FindNoCase(std::string_view text, std::string_view wanted, std::size_t from) {
    if (from > text.size()) return std::string_view::npos;
    const auto rest = text.substr(from);
    const auto hit = std::search(rest.begin(), rest.end(), wanted.begin(), wanted.end(), SameNoCase);
    if (hit == rest.end() && !wanted.empty()) return std::string_view::npos;
    return from + static_cast<std::size_t>(hit - rest.begin());
}

bool EqualNoCase(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, SameNoCase); }

bool ContainsNoCase(std::string_view text, std::string_view wanted) {
    return FindNoCase(text, wanted) != std::string_view::npos;
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
    Replace(text, from, to, [&](const std::string& s, std::size_t at) { return s.find(from, at); });
}

void ReplaceAllNoCase(std::string& text, std::string_view from, std::string_view to) {
    Replace(text, from, to, [&](const std::string& s, std::size_t at) { return FindNoCase(s, from, at); });
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> pieces;
    pieces.reserve(kUsualPieces);
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = text.find(separator, start);
        if (at == std::string_view::npos) break;
        pieces.push_back(text.substr(start, at - start));
        start = at + separator.size();
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

std::optional<std::int32_t> FindInt(std::string_view text) {
    std::size_t at = text.find_first_not_of(kBlanks);
    if (at == std::string_view::npos) return std::nullopt;
    const bool negative = text[at] == '-';
    if (negative || text[at] == '+') ++at;
    if (at == text.size() || !IsDigit(text[at])) return std::nullopt;
    constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t value = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at)
        value = std::min(value * 10 + (text[at] - '0'), kLimit);
    if (negative) value = -value;
    return static_cast<std::int32_t>(std::min(value, kLimit - 1));
}

std::int32_t ToInt(std::string_view text) { return FindInt(text).value_or(0); }
