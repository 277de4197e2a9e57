// The calendar arithmetic that both machine clocks share.
#pragma once
#include "foundation/Clock.h"

#include <ctime>

// The C library's break-down of a moment into local time.
std::tm LibraryLocal(std::time_t seconds);

// Local time by way of the C library, remembering the zone offset of the last quarter hour asked for: zone
// rules change at quarter hours only, and time stamps of one batch lie close together.
class LibraryCalendar : public Clock {
  public:
    CalendarTime ToLocal(std::int64_t seconds) override;
    std::int64_t FromLocal(const CalendarTime& local) override;
};
