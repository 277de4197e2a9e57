// Time-outs, the calendar, and time as text.
#include "foundation/Clock.h"

#include "support/VirtualClock.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <tuple>

namespace {

TEST(Timer, SurvivesTheWrapOfTheTickCounter) {
    VirtualClock clock(0, 0xFFFFFF00);
    const Timer timer(clock, 1000);
    clock.Sleep(999);
    EXPECT_FALSE(timer.Expired());
    EXPECT_EQ(timer.Remaining(), 1U);
    clock.Sleep(1);
    EXPECT_TRUE(timer.Expired());
    const Timer forever(clock, Timer::kForever);
    clock.Sleep(0x7FFFFFFF);
    EXPECT_FALSE(forever.Expired());
}

TEST(TimeText, IsATwelveHourClockOrUtc) {
    VirtualClock clock;
    struct Row {
        std::int64_t seconds;
        const char* text;
        const char* utc;
    };
    for (const Row& row : {Row{0, "n/a", "n/a"}, Row{-1, "n/a", "n/a"},
                           Row{1794750310, "11/15/2026 01:45:10 PM", "2026-11-15T13:45:10Z"},
                           Row{1794700800, "11/15/2026 12:00:00 AM", "2026-11-15T00:00:00Z"},
                           Row{1794744000, "11/15/2026 12:00:00 PM", "2026-11-15T12:00:00Z"},
                           Row{1, "01/01/1970 12:00:01 AM", "1970-01-01T00:00:01Z"}}) {
        EXPECT_EQ(TimeText(clock, row.seconds), row.text);
        EXPECT_EQ(UtcTimeText(row.seconds), row.utc);
    }
}

TEST(SystemClockCalendar, AgreesWithTheCLibrary) {
    const std::string old = getenv("TZ") != nullptr ? getenv("TZ") : "";
    for (const char* zone : {"UTC", "Europe/Amsterdam", "Asia/Kolkata", "America/St_Johns"}) {
        setenv("TZ", zone, 1);
        tzset();
        for (std::int64_t t = 946'684'800; t < 2'000'000'000; t += 9'876'543) {
            const auto seconds = static_cast<std::time_t>(t);
            std::tm local{};
            localtime_r(&seconds, &local);
            const CalendarTime mine = SystemClock().ToLocal(t);
            EXPECT_EQ(std::tie(mine.year, mine.month, mine.day, mine.hour, mine.minute, mine.second),
                      std::make_tuple(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                                      local.tm_min, local.tm_sec));
            const std::time_t now = std::time(nullptr);
            std::tm present{};
            localtime_r(&now, &present);
            local.tm_isdst = present.tm_isdst;
            EXPECT_EQ(SystemClock().FromLocal(mine), std::mktime(&local)) << zone << " " << t;
        }
    }
    old.empty() ? unsetenv("TZ") : setenv("TZ", old.c_str(), 1);
    tzset();
}

}  // namespace
