// Time as the component needs it: a tick counter, sleeping, and the wall clock in local time.
#pragma once
#include "foundation/InlineText.h"

#include <cstdint>
#include <string>

// A local calendar time; month and day count from 1.
struct CalendarTime {
    int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;

    // Milliseconds since some start; wraps around after 49.7 days.
    virtual std::uint32_t Ticks() = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;

    // Seconds since 1970-01-01 UTC.
    virtual std::int64_t Now() = 0;
    virtual CalendarTime ToLocal(std::int64_t seconds) = 0;

    // Reads a local time with the daylight-saving flag of the present moment; fields out of range carry over.
    virtual std::int64_t FromLocal(const CalendarTime& local) = 0;
};

// The machine's clock.
Clock& SystemClock();

// A time-out in milliseconds that is safe when the tick counter wraps; `kForever` never expires.
class Timer {
  public:
    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

    Timer(Clock& clock, std::uint32_t timeout) : clock_(&clock), start_(clock.Ticks()), timeout_(timeout) {}

    std::uint32_t Elapsed() const { return clock_->Ticks() - start_; }
    bool Expired() const { return timeout_ != kForever && Elapsed() >= timeout_; }
    std::uint32_t Remaining() const {
        if (timeout_ == kForever) return kForever;
        const std::uint32_t elapsed = Elapsed();
        return elapsed >= timeout_ ? 0 : timeout_ - elapsed;
    }

  private:
    Clock* clock_;
    std::uint32_t start_;
    std::uint32_t timeout_;
};

// A moment as calendar time in UTC.
CalendarTime ToUtc(std::int64_t seconds);

// "[hh:mm:ss]", the time prefix of log lines.
std::string ClockPrefix(const CalendarTime& local);

// A time stamp as users read it: "11/15/2026 01:45:10 PM" in local time, "n/a" for 0 and below.
using LocalTimeText = InlineText<22>;
LocalTimeText TimeText(Clock& clock, std::int64_t seconds);

// As mails have it, RFC 5322, in local time: "Sun, 15 Nov 2026 13:45:10 +0100"; no offset reads "-0000".
std::string MailTimeText(Clock& clock, std::int64_t seconds);

// The same in UTC as programs read it: "2026-11-15T13:45:10Z".
std::string UtcTimeText(std::int64_t seconds);
