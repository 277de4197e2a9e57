#include "foundation/UniqueNumber.h"

#include "foundation/Clock.h"

#include <atomic>

namespace {

// Spreads every bit of clock and process over the whole start.
std::uint32_t Start() {
    std::uint64_t seed = static_cast<std::uint64_t>(SystemClock().Now()) << 32 ^
                         static_cast<std::uint64_t>(ProcessNumber()) << 24 ^ SystemClock().Ticks();
    seed = (seed ^ seed >> 30) * 0xBF58476D1CE4E5B9U;
    seed = (seed ^ seed >> 27) * 0x94D049BB133111EBU;
    return static_cast<std::uint32_t>(seed ^ seed >> 31);
}

}  // namespace

std::uint32_t UniqueNumber() {
    static std::atomic<std::uint32_t> next = Start();
    return next++;
}
