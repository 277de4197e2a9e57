// The 16-character time form of SMPP 3.4 section 7.1.1: YYMMDDhhmmss, tenths, quarter-hour offset and "+",
// "-" or "R".
#pragma once
#include "foundation/Clock.h"

#include <cstdint>
#include <string>
#include <string_view>

// Seconds since 1970 of an absolute time, read as local time (tenths and zone offset are ignored on purpose);
// of a relative time, that span from the present moment. 0 for a text that is none.
std::int32_t ParseSmppTime(std::string_view text, Clock& clock = SystemClock());
