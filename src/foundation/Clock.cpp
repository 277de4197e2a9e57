#include "foundation/Clock.h"

#include <array>
#include <cstdio>

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

std::string UtcTimeText(std::int64_t seconds) {
    if (seconds <= 0) return "n/a";
    const CalendarTime t = ToUtc(seconds);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return text.data();
}
