// The calendar arithmetic that both machine clocks share.
#pragma once
#include "foundation/Clock.h"
#include "foundation/ZoneOffsets.h"

#include <ctime>

// The C library's break-down of a moment into local time.
std::tm LibraryLocal(std::time_t seconds);

// Local time by way of the C library, which is asked once for each day.
class LibraryCalendar : public Clock {
  public:
    CalendarTime ToLocal(std::int64_t seconds) override;
    std::int64_t FromLocal(const CalendarTime& local) override;

  private:
    ZoneOffsets toLocal_;    // by time in UTC
    ZoneOffsets fromLocal_;  // by local time, read with the present daylight flag
};
