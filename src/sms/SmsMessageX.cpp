#include "sms/SmsMessageX.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <utility>

CSmsMessageX& CSmsMessageX::operator=(const CSmsMessageX& other) {
    if (this == &other) return *this;
    CSmsMessageX copy(other);
    copy.Reference = std::move(Reference);
    copy.StorageLocation = std::move(StorageLocation);
    copy.ReceivedTime = ReceivedTime;
    return *this = std::move(copy);
}

void CSmsMessageX::Clear() {
    const std::int32_t received = ReceivedTime;
    *this = CSmsMessageX{};
    ReceivedTime = received;
}

void CSmsMessageX::SetSinglePart() {
    PartCount = 1;
    PartNumber = 1;
    PartReference = kNoReference;
}

void CSmsMessageX::TakeUserDataHeader() {
    using Value = CUserDataHeader::Value;
    if (const std::uint32_t total = UserDataHeader.Get(Value::kTotal); total != 0) {
        PartCount = total;
        PartNumber = UserDataHeader.Get(Value::kSequence);
        PartReference = UserDataHeader.Get(Value::kReference);
    }
    const std::uint32_t source = UserDataHeader.Get(Value::kSourcePort16);
    const std::uint32_t destination = UserDataHeader.Get(Value::kDestinationPort16);
    SourcePort = source != 0 ? source : UserDataHeader.Get(Value::kSourcePort8);
    DestinationPort = destination != 0 ? destination : UserDataHeader.Get(Value::kDestinationPort8);
}

std::string_view FormatName(std::int32_t format) {
    static constexpr auto kNames = std::to_array<std::pair<std::int32_t, std::string_view>>({
        {sms::asMESSAGEFORMAT_TEXT, "TEXT"},
        {sms::asMESSAGEFORMAT_TEXT_FLASH, "TEXT_FLASH"},
        {sms::asMESSAGEFORMAT_TEXT_MULTIPART, "TEXT_MULTIPART"},
        {sms::asMESSAGEFORMAT_DATA, "DATA"},
        {sms::asMESSAGEFORMAT_DATA_UDH, "DATA_UDH"},
        {sms::asMESSAGEFORMAT_UNICODE, "UNICODE"},
        {sms::asMESSAGEFORMAT_UNICODE_FLASH, "UNICODE_FLASH"},
        {sms::asMESSAGEFORMAT_UNICODE_MULTIPART, "UNICODE_MULTIPART"},
        {sms::asMESSAGEFORMAT_UNICODE_MULTIPART_FLASH, "UNICODE_MULTIPART_FLASH"},
    });
    const auto* const row =
        std::ranges::find(kNames, format, &std::pair<std::int32_t, std::string_view>::first);
    return row != kNames.end() ? row->second : "UNKNOWN";
}

Recipient ParseRecipient(std::string_view text) {
    if (text.size() > 2 && text[2] == ':') return {std::string(text), 0};
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return {std::string(text), 0};
    return {std::string(text.substr(0, colon)), static_cast<std::uint32_t>(ToInt(text.substr(colon + 1)))};
}

ResultCode CheckRecipient(std::string_view recipient, PrefixRule rule) {
    constexpr std::size_t kShortest = 4;
    constexpr std::size_t kLongest = 64;
    if (recipient.find("dl:") != std::string_view::npos) return result::Success;
    const auto allowed = [](char c) { return IsDigit(c) || c == ':'; };
    if (recipient.size() < kShortest || recipient.size() > kLongest ||
        !std::ranges::all_of(recipient.substr(1), allowed)) {
        return result::InvalidRecipient;
    }
    const char first = recipient.front();
    const bool letter = UpperChar(first) >= 'A' && UpperChar(first) <= 'Z';
    const bool known = std::string_view("+NGSAU").find(first) != std::string_view::npos;
    const bool refused = rule == PrefixRule::kNoDigit ? IsDigit(first) : letter && !known;
    return refused ? result::RecipientPrefixMissing : result::Success;
}
