#include "sms/SmsConstants.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    std::string_view name;
    std::int32_t value;
    std::string_view text;
};

constexpr auto kConstants = std::to_array<Row>({
#define CONSTANTS_AS_ROWS
#include "sms/SmsConstants.inc"
});

}  // namespace

std::string_view DeliveryStatusText(std::int32_t status) {
    const auto* const row = std::ranges::find_if(kConstants, [status](const Row& candidate) {
        return candidate.value == status && candidate.name.starts_with("asDELIVERYSTATUS_");
    });
    return row != kConstants.end() ? row->text : "Unspecified";
}
