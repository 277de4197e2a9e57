#include "foundation/SystemClock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace {

class PosixClock final : public LibraryCalendar {
  public:
    std::uint32_t Ticks() override {
        using namespace std::chrono;
        return static_cast<std::uint32_t>(
            duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
    void Sleep(std::uint32_t milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
    std::int64_t Now() override { return std::time(nullptr); }
};

}  // namespace

std::tm LibraryLocal(std::time_t seconds) {
    std::tm out{};
    localtime_r(&seconds, &out);
    return out;
}

Clock& SystemClock() {
    static PosixClock clock;
    return clock;
}
