#include "foundation/SystemClock.h"

#include <ctime>

namespace {

// Days since 1970-01-01 in the proleptic Gregorian calendar; a month outside 1..12 carries into the year.
constexpr std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
    year += FloorDivide(month - 1, 12);
    const std::int64_t m = (month - 1) - FloorDivide(month - 1, 12) * 12 + 1;
    const std::int64_t y = m <= 2 ? year - 1 : year;
    const std::int64_t era = FloorDivide(y, 400);
    const std::int64_t yoe = y - era * 400;
    const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5;
    return era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy + day - 1 - 719468;
}

constexpr CalendarTime CivilFromSeconds(std::int64_t seconds) {
    const std::int64_t days = FloorDivide(seconds, kDay);
    const auto rest = static_cast<int>(seconds - days * kDay);
    const std::int64_t z = days + 719468;
    const std::int64_t era = FloorDivide(z, 146097);
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    CalendarTime t;
    t.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    t.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    t.year = static_cast<int>(yoe + era * 400 + (t.month <= 2 ? 1 : 0));
    t.hour = rest / 3600;
    t.minute = rest / 60 % 60;
    t.second = rest % 60;
    return t;
}

std::int64_t SecondsFromCivil(const CalendarTime& t) {
    return DaysFromCivil(t.year, t.month, t.day) * kDay + t.hour * 3600LL + t.minute * 60LL + t.second;
}

// The offset of local time from UTC, in seconds, at the given moment.
std::int64_t OffsetAt(std::int64_t seconds) {
    const std::tm t = LibraryLocal(static_cast<std::time_t>(seconds));
    return SecondsFromCivil({t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec}) -
           seconds;
}

// How far local time, read with the given daylight flag, is ahead of UTC. A time that the library cannot read
// counts as UTC.
std::int64_t OffsetAtLocal(std::int64_t local, int daylightFlag) {
    const CalendarTime start = CivilFromSeconds(local);
    std::tm t{};
    t.tm_year = start.year - 1900;
    t.tm_mon = start.month - 1;
    t.tm_mday = start.day;
    t.tm_hour = start.hour;
    t.tm_min = start.minute;
    t.tm_isdst = daylightFlag;
    const std::time_t utc = std::mktime(&t);
    return utc == -1 ? 0 : local - static_cast<std::int64_t>(utc);
}

}  // namespace

CalendarTime ToUtc(std::int64_t seconds) { return CivilFromSeconds(seconds); }

CalendarTime LibraryCalendar::ToLocal(std::int64_t seconds) {
    return CivilFromSeconds(seconds + toLocal_.At(seconds, Now(), OffsetAt));
}

std::int64_t LibraryCalendar::FromLocal(const CalendarTime& local) {
    const std::int64_t civil = SecondsFromCivil(local);
    const std::int64_t now = Now();
    return civil - fromLocal_.At(civil, now, [now](std::int64_t time) {
        return OffsetAtLocal(time, LibraryLocal(static_cast<std::time_t>(now)).tm_isdst);
    });
}
