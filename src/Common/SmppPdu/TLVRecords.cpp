#include "Common/SmppPdu/TLVRecords.h"

#include <algorithm>
#include <string>

namespace {

std::u16string Decimal(std::uint32_t value) {
    const std::string digits = std::to_string(static_cast<std::int32_t>(value));
    return {digits.begin(), digits.end()};
}

std::uint32_t ReadDecimal(std::u16string_view text) {
    std::size_t at = text.find_first_not_of(u" \t");
    if (at == std::u16string_view::npos) return 0;
    const bool negative = text[at] == u'-';
    if (negative || text[at] == u'+') ++at;
    std::uint32_t value = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at)
        value = value * 10 + (text[at] - u'0');
    return negative ? 0U - value : value;
}

// Cuts the text before the separator off and returns it; all of it when there is no separator.
std::u16string_view TakeUntil(std::u16string_view& rest, std::u16string_view separator) {
    const std::size_t at = rest.find(separator);
    const std::u16string_view piece = rest.substr(0, at);
    rest = at == std::u16string_view::npos ? std::u16string_view{} : rest.substr(at + separator.size());
    return piece;
}

}  // namespace

void CTLVRecord::SetInteger(std::uint32_t value) {
    byteValue = static_cast<std::uint8_t>(value);
    wordValue = static_cast<std::uint16_t>(value);
    longValue = value;
}

std::uint32_t CTLVRecord::Integer() const {
    switch (type) {
        case TLVType::kByte:
            return byteValue;
        case TLVType::kWord:
            return wordValue;
        case TLVType::kLong:
            return longValue;
        default:
            return 0;
    }
}

void CTLVRecords::AddOrReplace(CTLVRecord record) {
    const auto same = std::ranges::find(records_, record.tag, &CTLVRecord::tag);
    if (same != records_.end()) {
        *same = std::move(record);
    } else {
        records_.push_back(std::move(record));
    }
}

const CTLVRecord* CTLVRecords::Find(std::uint32_t tag) const {
    const auto hit = std::ranges::find(records_, tag, &CTLVRecord::tag);
    return hit != records_.end() ? &*hit : nullptr;
}

std::u16string CTLVRecords::ToText() const {
    std::u16string text;
    for (const CTLVRecord& record : records_) {
        if (record.type == TLVType::kUnicode) continue;
        const bool integer = record.type <= TLVType::kLong;
        text += Decimal(record.tag) + u";;" + Decimal(static_cast<std::uint32_t>(record.type)) + u";;";
        text += integer ? Decimal(record.Integer()) : record.text;
        text += u"||";
    }
    return text;
}

void CTLVRecords::FromText(std::u16string_view text) {
    Clear();
    for (;;) {
        std::u16string_view piece = TakeUntil(text, u"||");
        if (piece.empty()) return;
        CTLVRecord record;
        record.tag = ReadDecimal(TakeUntil(piece, u";;"));
        record.type = static_cast<TLVType>(ReadDecimal(TakeUntil(piece, u";;")));
        const std::u16string_view value = TakeUntil(piece, u";;");
        if (record.type <= TLVType::kLong) {
            record.SetInteger(ReadDecimal(value));
        } else {
            record.text = value;
        }
        AddOrReplace(std::move(record));
    }
}
