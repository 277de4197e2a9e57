// Time-outs, the calendar, and time as text.
#include "foundation/SystemClock.h"
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

// The calendar of the machine's zone at a chosen present.
class ZoneClock : public LibraryCalendar {
  public:
    explicit ZoneClock(std::int64_t now) : now_(now) {}
    std::uint32_t Ticks() override { return 0; }
    void Sleep(std::uint32_t) override {}
    std::int64_t Now() override { return now_; }
    void SetNow(std::int64_t now) { now_ = now; }

  private:
    std::int64_t now_;
};

class Zone {
  public:
    explicit Zone(const char* name) {
        if (const char* old = getenv("TZ")) old_ = old;
        Set(name);
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
    ~Zone() { Set(old_.empty() ? nullptr : old_.c_str()); }

  private:
    static void Set(const char* name) {
        name != nullptr ? setenv("TZ", name, 1) : unsetenv("TZ");
        tzset();
    }
    std::string old_;
};

void ExpectAsTheCLibrary(LibraryCalendar& clock, std::int64_t moment) {
    const auto seconds = static_cast<std::time_t>(moment);
    std::tm local{};
    localtime_r(&seconds, &local);
    const CalendarTime mine = clock.ToLocal(moment);
    ASSERT_EQ(std::tie(mine.year, mine.month, mine.day, mine.hour, mine.minute, mine.second),
              std::make_tuple(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                              local.tm_min, local.tm_sec))
        << moment;
    const auto now = static_cast<std::time_t>(clock.Now());
    std::tm present{};
    localtime_r(&now, &present);
    local.tm_isdst = present.tm_isdst;
    ASSERT_EQ(clock.FromLocal(mine), std::mktime(&local)) << moment;
}

constexpr std::int64_t kWinter = 1'769'000'000, kSummer = 1'784'000'000;  // January and July 2026

TEST(LibraryCalendar, AgreesWithTheCLibrary) {
    for (const char* name : {"UTC", "Europe/Amsterdam", "Asia/Kolkata", "America/St_Johns",
                             "Australia/Lord_Howe", "Pacific/Apia", "Africa/Casablanca"}) {
        SCOPED_TRACE(name);
        const Zone zone(name);
        ZoneClock clock(0);
        for (const std::int64_t now : {kWinter, kSummer}) {
            clock.SetNow(now);
            for (std::int64_t t = 946'684'800; t < 2'000'000'000; t += 9'876'543)
                ExpectAsTheCLibrary(clock, t);
            for (std::int64_t t = 1'325'100'000; t < 1'325'400'000; t += 1799)  // a day that Apia left out
                ExpectAsTheCLibrary(clock, t);
        }
    }
}

TEST(LibraryCalendar, GivesTheTimeOfMails) {
    struct Row {
        const char* zone;
        std::int64_t seconds;
        const char* text;
    };
    for (const Row& row : {
             Row{"UTC", kWinter, "Wed, 21 Jan 2026 12:53:20 -0000"},
             Row{"Europe/Amsterdam", kWinter, "Wed, 21 Jan 2026 13:53:20 +0100"},
             Row{"Europe/Amsterdam", kSummer, "Tue, 14 Jul 2026 05:33:20 +0200"},
             Row{"America/St_Johns", kWinter, "Wed, 21 Jan 2026 09:23:20 -0330"},
             Row{"Asia/Kolkata", 1'767'205'800, "Thu, 1 Jan 2026 00:00:00 +0530"},
             Row{"Pacific/Apia", 1'767'180'000, "Thu, 1 Jan 2026 00:20:00 +1300"},
             Row{"America/New_York", 1'767'240'000, "Wed, 31 Dec 2025 23:00:00 -0500"},
             Row{"UTC", -1, "Wed, 31 Dec 1969 23:59:59 -0000"},
         }) {
        const Zone zone(row.zone);
        ZoneClock clock(row.seconds);
        EXPECT_EQ(MailTimeText(clock, row.seconds), row.text);
    }
}

TEST(LibraryCalendar, ChangesAtTheMinuteWithTheZone) {
    const Zone zone("Europe/Berlin");
    for (const std::int64_t now : {kWinter, kSummer}) {
        ZoneClock clock(now);
        for (const std::int64_t change : {1'774'746'000, 1'792'890'000}) {  // March and October 2026
            for (std::int64_t t = change - 100'000; t < change + 100'000; t += 61)
                ExpectAsTheCLibrary(clock, t);
        }
    }
}

TEST(LibraryCalendar, ReadsLocalTimeWithThePresentDaylightFlag) {
    const Zone zone("Europe/Berlin");
    ZoneClock clock(kWinter);
    const CalendarTime noon{2026, 7, 1, 12, 0, 0};
    EXPECT_EQ(clock.FromLocal(noon), 1'782'903'600);  // 11:00 UTC, as in winter
    clock.SetNow(kSummer);
    EXPECT_EQ(clock.FromLocal(noon), 1'782'900'000);  // 10:00 UTC
    clock.SetNow(kWinter);
    EXPECT_EQ(clock.FromLocal(noon), 1'782'903'600);
}

}  // namespace
