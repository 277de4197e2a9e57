// The constants of the SMS classes under their interface names, for example `sms::asMESSAGEFORMAT_UNICODE`
// (20).
#pragma once
#include <cstdint>
#include <string_view>

namespace sms {
#define CONSTANTS_AS_VALUES
#include "sms/SmsConstants.inc"
}  // namespace sms

// "Delivered", "Enroute" ...; "Unspecified" for a value that is no delivery status.
std::string_view DeliveryStatusText(std::int32_t status);

// True when no further report can change the status: 2 to 9 and 11 to 13.
constexpr bool IsCompletedStatus(std::int32_t status) {
    return (status >= sms::asDELIVERYSTATUS_DELIVERED && status <= sms::asDELIVERYSTATUS_SKIPPED) ||
           (status >= sms::asDELIVERYSTATUS_SUBMITTED && status <= sms::asDELIVERYSTATUS_NOCREDITS);
}
