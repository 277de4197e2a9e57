// How many messages per second may go out: evenly spaced, and a pause saves up one message at the most.
#pragma once
#include <algorithm>
#include <cstdint>

class SmppPace {
  public:
    explicit SmppPace(std::uint32_t tick) : lastTick_(tick) {}

    // Lets time pass up to a tick of the clock.
    void Advance(std::uint32_t tick) {
        now_ += std::uint64_t{tick - lastTick_} * kMicroseconds;
        lastTick_ = tick;
    }

    // Whether a message may go now, which is then counted. A throughput of 0 or less is no limit.
    bool Allows(std::int32_t throughput) {
        if (throughput <= 0) return true;
        if (next_ > now_) return false;
        next_ =
            std::max(next_, now_ > kLag ? now_ - kLag : 0) + kSecond / static_cast<std::uint64_t>(throughput);
        return true;
    }

    // Milliseconds until the next message may go, from 1.
    std::uint64_t Wait() const { return next_ > now_ ? (next_ - now_) / kMicroseconds + 1 : 1; }

  private:
    static constexpr std::uint64_t kMicroseconds = 1000;  // of a tick
    static constexpr std::uint64_t kSecond = 1'000'000;
    static constexpr std::uint64_t kLag = 10'000;  // what ticks that come late may be made up for

    std::uint64_t now_ = 0;   // microseconds since the beginning
    std::uint64_t next_ = 0;  // when the next message may go
    std::uint32_t lastTick_;
};
