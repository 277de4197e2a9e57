#include "gsm/AtValues.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {

// Where the field at the start of the text ends: at a comma outside of brackets and quotes, or at the end.
std::size_t FieldEnd(std::string_view text) {
    bool quoted = false;
    int depth = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '(') ++depth;
        if (c == ')') --depth;
        if (c == ',' && depth <= 0) return at;
    }
    return text.size();
}

// Takes the mark off the start and, where it is there, its counterpart off the end.
bool Unwrap(std::string_view& text, char begin, char end) {
    if (!text.starts_with(begin)) return false;
    text.remove_prefix(1);
    if (text.ends_with(end)) text.remove_suffix(1);
    text = Trim(text);
    return true;
}

}  // namespace

std::vector<AtField> AtFields(std::string_view text) {
    std::vector<AtField> fields;
    for (bool more = !Trim(text).empty(); more;) {
        const std::size_t end = FieldEnd(text);
        AtField field{Trim(text.substr(0, end))};
        field.isList = Unwrap(field.text, '(', ')');
        if (!field.isList) (void)Unwrap(field.text, '"', '"');
        fields.push_back(field);
        more = end < text.size();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return fields;
}

AtRange RangeOf(std::string_view value) {
    const std::size_t dash = value.find('-');
    const std::string first = OnlyDigits(value.substr(0, dash));
    if (dash != std::string_view::npos) return {ToInt(first), ToInt(OnlyDigits(value.substr(dash + 1)))};
    return first.empty() ? AtRange{} : AtRange{ToInt(first), ToInt(first)};
}

std::string_view AnswerOf(std::string_view reply) {
    const std::size_t colon = reply.find(':');
    return colon == std::string_view::npos ? reply : reply.substr(colon + 1);
}

unsigned ParseCnmiList(std::string_view list) {
    constexpr std::int32_t kHighest = 3;
    (void)Unwrap(list, '(', ')');
    const bool isRange = list.find('-') != std::string_view::npos;
    unsigned values = 0;
    for (const AtField& field : isRange ? std::vector{AtField{list}} : AtFields(list)) {
        const AtRange range = RangeOf(field.text);
        for (std::int32_t n = range.first; n <= std::min(range.last, kHighest); ++n) values |= 1U << n;
    }
    return values;
}
