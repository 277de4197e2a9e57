#include "mms/MmsAddresses.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspCharsets.h"
#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "mms/MmsConstants.h"

#include <algorithm>
#include <array>

std::string mms::BareAddress(std::string_view address) {
    std::string bare(address);
    for (const std::string_view type : {kTypeNumber, kTypeIPv4, kTypeIPv6}) ReplaceAll(bare, type, {});
    return bare;
}

std::string mms::AddressIn(const MmsField& field) {
    return BareAddress(ToAnsi(wsp::WideText(field.text, field.charset)));
}

std::int32_t mms::ClassIn(const MmsField& field) {
    constexpr auto kNames =
        std::to_array<std::string_view>({"personal", "advertisement", "informational", "auto"});
    if (field.token != 0) return static_cast<std::int32_t>(field.token - kClassBase);
    const auto* const name = std::ranges::find(kNames, field.text);
    return name != kNames.end() ? static_cast<std::int32_t>(name - kNames.begin()) : asMMS_CLASS_PERSONAL;
}
