// The constants of the MMS classes under their interface names, for example `mms::asMMS_PRIORITY_HIGH` (2).
#pragma once
#include <cstdint>

namespace mms {
#define CONSTANTS_AS_VALUES
#include "mms/MmsConstants.inc"
}  // namespace mms
