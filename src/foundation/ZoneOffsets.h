// What is known of a time zone: its offset from UTC at a given time, a day at a time.
#pragma once
#include <array>
#include <atomic>
#include <cstdint>

inline constexpr std::int64_t kQuarterHour = 900;  // seconds; zone rules change at quarter hours only
inline constexpr std::int64_t kDay = 86400;

constexpr std::int64_t FloorDivide(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// Remembers offsets for one quarter hour of the present: then a change of the zone, or of its daylight flag,
// counts. A day at whose two ends the offset is the same has it throughout; the few other days are remembered
// by quarter hours. Any thread may ask.
class ZoneOffsets {
  public:
    // The offset at `time`, in seconds; `read(time)` gives it for the start of a quarter hour.
    template <class Read>
    std::int64_t At(std::int64_t time, std::int64_t present, Read read) {
        const std::int64_t now = FloorDivide(present, kQuarterHour);
        const std::int64_t day = FloorDivide(time, kDay);
        const std::int64_t ofDay = Known(2 * day, now, [&] {
            const std::int64_t first = read(day * kDay);
            return read((day + 1) * kDay - kQuarterHour) == first ? first : kChanges;
        });
        if (ofDay != kChanges) return ofDay;
        const std::int64_t quarter = FloorDivide(time, kQuarterHour);
        return Known(2 * quarter + 1, now, [&] { return read(quarter * kQuarterHour); });
    }

  private:
    static constexpr std::size_t kSlots = 1024;

    // A slot holds key, present and offset; 0 is free.
    static constexpr int kOffsetBits = 19, kPresentBits = 20, kKeyBits = 64 - kOffsetBits - kPresentBits;
    static constexpr std::int64_t kBias = 1LL << (kOffsetBits - 1);
    static constexpr std::int64_t kChanges = kBias - 1;

    static constexpr std::uint64_t Low(std::int64_t value, int bits) {
        return static_cast<std::uint64_t>(value) & ((1ULL << bits) - 1);
    }

    template <class Find>
    std::int64_t Known(std::int64_t key, std::int64_t now, Find find) {
        constexpr std::int64_t kKeyEnd = 1LL << (kKeyBits - 1);
        if (key < -kKeyEnd || key >= kKeyEnd) return find();  // thousands of years away
        const std::uint64_t tag = Low(key, kKeyBits) << kPresentBits | Low(now, kPresentBits);
        std::atomic<std::uint64_t>& slot = slots_[static_cast<std::uint64_t>(key) / 2 % kSlots];
        const std::uint64_t held = slot.load(std::memory_order_relaxed);
        if (held >> kOffsetBits == tag && held != 0)
            return static_cast<std::int64_t>(Low(static_cast<std::int64_t>(held), kOffsetBits)) - kBias;
        const std::int64_t offset = find();
        slot.store(tag << kOffsetBits | Low(offset + kBias, kOffsetBits), std::memory_order_relaxed);
        return offset;
    }

    std::array<std::atomic<std::uint64_t>, kSlots> slots_{};
};
