#include "foundation/SystemClock.h"

#include <ctime>
#include <windows.h>

namespace {

class WindowsClock final : public LibraryCalendar {
  public:
    std::uint32_t Ticks() override { return ::GetTickCount(); }
    void Sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }
    std::int64_t Now() override {
        FILETIME now{};  // of 100 ns since 1601
        ::GetSystemTimeAsFileTime(&now);
        const std::int64_t time = std::int64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
        return time / 10'000'000 - 11'644'473'600;
    }
};

}  // namespace

std::tm LibraryLocal(std::time_t seconds) {
    std::tm out{};
    if (localtime_s(&out, &seconds) != 0) gmtime_s(&out, &seconds);
    return out;
}

Clock& SystemClock() {
    static WindowsClock clock;
    return clock;
}
