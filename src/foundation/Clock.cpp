#include "foundation/Clock.h"

#include "foundation/ZoneOffsets.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <tuple>

namespace {

// Minutes from UTC to a local time of the same moment.
int ZoneMinutes(const CalendarTime& local, const CalendarTime& utc) {
    constexpr int kMinutesPerHour = 60, kMinutesPerDay = 1440;
    const auto day = [](const CalendarTime& t) { return std::tuple(t.year, t.month, t.day); };
    const int days = day(local) > day(utc) ? 1 : day(local) < day(utc) ? -1 : 0;
    return days * kMinutesPerDay + (local.hour - utc.hour) * kMinutesPerHour + local.minute - utc.minute;
}

}  // namespace

std::string ClockPrefix(const CalendarTime& local) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "[%02d:%02d:%02d]", local.hour, local.minute, local.second);
    return text.data();
}

LocalTimeText TimeText(Clock& clock, std::int64_t seconds) {
    if (seconds <= 0) return std::string_view("n/a");
    const CalendarTime t = clock.ToLocal(seconds);
    std::array<char, 22> text = {"00/00/0000 00:00:00 A"};
    const auto digits = [&text](std::size_t at, int value) {
        text[at] = static_cast<char>('0' + value / 10 % 10);
        text[at + 1] = static_cast<char>('0' + value % 10);
    };
    const int hour = t.hour % 12 == 0 ? 12 : t.hour % 12;
    digits(0, t.month);
    digits(3, t.day);
    digits(6, t.year / 100);
    digits(8, t.year % 100);
    digits(11, hour);
    digits(14, t.minute);
    digits(17, t.second);
    if (t.hour >= 12) text[20] = 'P';
    text[21] = 'M';
    return text;
}

std::string MailTimeText(Clock& clock, std::int64_t seconds) {
    constexpr const char* kDays[] = {"Thu", "Fri", "Sat", "Sun", "Mon", "Tue", "Wed"};  // as of 1970
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr int kSecondsPerMinute = 60, kMinutesPerHour = 60, kHourPlace = 100;
    const CalendarTime t = clock.ToLocal(seconds);
    const int zone = ZoneMinutes(t, ToUtc(seconds));
    const std::int64_t day = FloorDivide(seconds + std::int64_t{zone} * kSecondsPerMinute, kDay);
    const int digits = std::abs(zone) / kMinutesPerHour * kHourPlace + std::abs(zone) % kMinutesPerHour;
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s, %d %s %04d %02d:%02d:%02d %c%04d", kDays[(day % 7 + 7) % 7],
                  t.day, kMonths[(t.month + 11) % 12], t.year, t.hour, t.minute, t.second,
                  zone < 1 ? '-' : '+', digits);
    return text.data();
}

std::string UtcTimeText(std::int64_t seconds) {
    if (seconds <= 0) return "n/a";
    const CalendarTime t = ToUtc(seconds);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return text.data();
}
