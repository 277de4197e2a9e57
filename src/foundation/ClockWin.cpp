#include "foundation/SystemClock.h"

#include <ctime>
#include <windows.h>

namespace {

class WindowsClock final : public LibraryCalendar {
  public:
    std::uint32_t Ticks() override { return ::GetTickCount(); }
    void Sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }
    std::int64_t Now() override { return std::time(nullptr); }
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
