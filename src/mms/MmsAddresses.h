// What the fields of a unit say, as messages show it.
#pragma once
#include "mms/MmsFields.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace mms {

// What stands behind an address of the kind.
inline constexpr std::string_view kTypeNumber = "/TYPE=PLMN";
inline constexpr std::string_view kTypeIPv4 = "/TYPE=IPv4";
inline constexpr std::string_view kTypeIPv6 = "/TYPE=IPv6";

// An address without its type.
std::string BareAddress(std::string_view address);

// The address in a field, without its type.
std::string AddressIn(const MmsField& field);

// An asMMS_CLASS_ constant; personal for a class that has none.
std::int32_t ClassIn(const MmsField& field);

}  // namespace mms
