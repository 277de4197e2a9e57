#include "sms/MessageFormats.h"

#include "foundation/Hex.h"
#include "sms/SmsConstants.h"

#include <algorithm>
#include <array>

namespace {

// TEXT_MULTIPART_FLASH never had a name of its own.
constexpr auto kFormats = std::to_array<MessageFormat>({
    {sms::asMESSAGEFORMAT_TEXT, "TEXT", Alphabet::kGsm, false, false},
    {sms::asMESSAGEFORMAT_TEXT_FLASH, "TEXT_FLASH", Alphabet::kGsm, true, false},
    {sms::asMESSAGEFORMAT_TEXT_MULTIPART, "TEXT_MULTIPART", Alphabet::kGsm, false, true},
    {sms::asMESSAGEFORMAT_TEXT_MULTIPART_FLASH, "UNKNOWN", Alphabet::kGsm, true, true},
    {sms::asMESSAGEFORMAT_DATA, "DATA", Alphabet::kOctets, false, false},
    {sms::asMESSAGEFORMAT_DATA_UDH, "DATA_UDH", Alphabet::kOctets, false, true},
    {sms::asMESSAGEFORMAT_UNICODE, "UNICODE", Alphabet::kUcs2, false, false},
    {sms::asMESSAGEFORMAT_UNICODE_FLASH, "UNICODE_FLASH", Alphabet::kUcs2, true, false},
    {sms::asMESSAGEFORMAT_UNICODE_MULTIPART, "UNICODE_MULTIPART", Alphabet::kUcs2, false, true},
    {sms::asMESSAGEFORMAT_UNICODE_MULTIPART_FLASH, "UNICODE_MULTIPART_FLASH", Alphabet::kUcs2, true, true},
});
constexpr MessageFormat kOther{-1, "UNKNOWN", Alphabet::kGsm, false, false};

}  // namespace

const MessageFormat& FormatOf(std::int32_t number) {
    const auto* const row = std::ranges::find(kFormats, number, &MessageFormat::number);
    return row != kFormats.end() ? *row : kOther;
}

bool CanHold(const MessageFormat& format, std::u16string_view body) {
    return format.alphabet != Alphabet::kOctets || hex::IsHex(body);
}
