// What a benchmark says besides its time, so that machines compare: how many times as long as a memcpy of the
// same octets an item takes, and how often it allocates.
#pragma once
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace measures {

// Calls of operator new in this thread so far.
std::int64_t Allocations();

// Octets that this thread holds, and the most it has held since they were forgotten.
std::int64_t Octets();
std::int64_t MostOctets();
void ForgetMostOctets();

// Processor time, so that other programs do not count.
inline double SecondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Seconds that a memcpy of one of the items takes, gone through in order.
template <class Items>
double CopySeconds(const Items& items) {
    constexpr int kRounds = 1000;
    std::size_t largest = 0;
    for (const std::string_view item : items) largest = item.size() > largest ? item.size() : largest;
    std::vector<char> copy(largest);
    const std::clock_t start = std::clock();
    for (int round = 0; round < kRounds; ++round) {
        for (const std::string_view item : items) {
            std::memcpy(copy.data(), item.data(), item.size());
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        }
    }
    return SecondsSince(start) / (kRounds * static_cast<double>(items.size()));
}

// Items per second, "of_memcpy" and "allocs" of what happens between construction and Report.
class PerItem {
  public:
    explicit PerItem(benchmark::State& state)
        : state_(state), allocations_(Allocations()), start_(std::clock()) {}

    // `octets` has the octets of each item, which are what a memcpy would move.
    template <class Items>
    void Report(const Items& octets, std::int64_t itemsDone) {
        const double taken = SecondsSince(start_);
        const auto count = static_cast<double>(itemsDone);
        state_.SetItemsProcessed(itemsDone);
        state_.counters["allocs"] = static_cast<double>(Allocations() - allocations_) / count;
        state_.counters["of_memcpy"] = taken / count / CopySeconds(octets);
    }

  private:
    benchmark::State& state_;
    std::int64_t allocations_;
    std::clock_t start_;
};

}  // namespace measures
