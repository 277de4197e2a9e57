// Time that passes only when somebody sleeps; the calendar is UTC.
#pragma once
#include "foundation/Clock.h"

#include <ctime>

class VirtualClock : public Clock {
  public:
    explicit VirtualClock(std::int64_t now = 1'700'000'000, std::uint32_t ticks = 0)
        : now_(now), ticks_(ticks) {}

    std::uint32_t Ticks() override { return ticks_; }
    void Sleep(std::uint32_t milliseconds) override {
        ticks_ += milliseconds;
        slept_ += milliseconds;
    }
    std::int64_t Now() override { return now_ + static_cast<std::int64_t>(slept_ / 1000); }
    CalendarTime ToLocal(std::int64_t seconds) override {
        const auto t = static_cast<std::time_t>(seconds);
        std::tm out{};
        gmtime_r(&t, &out);
        return {out.tm_year + 1900, out.tm_mon + 1, out.tm_mday, out.tm_hour, out.tm_min, out.tm_sec};
    }
    std::int64_t FromLocal(const CalendarTime& local) override {
        std::tm t{};
        t.tm_year = local.year - 1900;
        t.tm_mon = local.month - 1;
        t.tm_mday = local.day;
        t.tm_hour = local.hour;
        t.tm_min = local.minute;
        t.tm_sec = local.second;
        return timegm(&t);
    }

    void SetNow(std::int64_t now) {
        now_ = now;
        slept_ = 0;
    }
    std::uint64_t Slept() const { return slept_; }

  private:
    std::int64_t now_;
    std::uint32_t ticks_;
    std::uint64_t slept_ = 0;
};
