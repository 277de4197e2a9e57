// The received-message store and the delivery reports, and how their cost grows with what they hold.
#include "foundation/Hex.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <malloc.h>
#include <string>
#include <thread>

namespace {

CSmsMessageX Record(std::uint32_t number, std::uint32_t count, std::uint32_t reference,
                    const std::string& sender) {
    CSmsMessageX record;
    record.Sender = sender;
    record.Recipient = "+31600000000";
    record.Data = u"The text of one part of a message";
    record.PartCount = count;
    record.PartNumber = number;
    record.PartReference = reference;
    record.TimeSecs = static_cast<std::int32_t>(SystemClock().Now());
    return record;
}

// Half of the records are parts of two-part messages: all second parts first, then the first parts backwards.
void FillAndWalk(benchmark::State& state) {
    const auto records = static_cast<std::uint32_t>(state.range(0));
    const std::uint32_t pairs = records / 4;
    std::size_t memory = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks;
        CSmsMessagesX store;
        const auto sender = [](std::uint32_t i) { return "+3161" + std::to_string(1000000 + i / 256); };
        for (std::uint32_t i = 0; i < pairs; ++i) store.Add(Record(2, 2, i % 256, sender(i)));
        for (std::uint32_t i = 0; i < records - 2 * pairs; ++i) store.Add(Record(1, 1, 256, sender(i)));
        for (std::uint32_t i = pairs; i-- > 0;) store.Add(Record(1, 2, i % 256, sender(i)));
        CSmsMessageX message;
        std::size_t walked = 0;
        for (ResultCode code = store.First(message); code == 0; code = store.Next(message)) ++walked;
        if (walked != records - pairs) state.SkipWithError("messages are missing");
        memory = mallinfo2().uordblks - before;
    }
    state.SetItemsProcessed(state.iterations() * records);
    state.counters["bytes/record"] = static_cast<double>(memory) / records;
    state.SetComplexityN(records);
}
BENCHMARK(FillAndWalk)
    ->RangeMultiplier(10)
    ->Range(1000, 100'000)
    ->Complexity(benchmark::oNLogN)
    ->Unit(benchmark::kMillisecond);

// A message from sending to its receipt, beside so many others; references and ids count up, as they do.
std::string Hex(std::uint32_t number) {
    std::string text;
    hex::AppendNumber(text, number);
    return text;
}

void SendOne(CSmsDeliveryReports& reports, std::uint32_t number) {
    const std::string reference = Hex(number);
    reports.RecordSent(reference, ReportWanted::kSubmitRequested);
    const SubmitAnswer answer{reference, sms::asDELIVERYSTATUS_ENROUTE, "00A1" + reference};
    reports.RecordAnswers({&answer, 1});
}

std::size_t HeapInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void ReportsAtSize(benchmark::State& state) {
    const std::size_t before = HeapInUse();
    CSmsDeliveryReports reports;
    const auto size = static_cast<std::uint32_t>(state.range(0));
    std::uint32_t next = 0x5A000000;
    for (; reports.Count() < size; ++next) SendOne(reports, next);
    const std::size_t memory = HeapInUse() - before;
    for (auto _ : state) {
        SendOne(reports, next);
        SmsReceipt receipt{"00A1" + Hex(next - 1000), sms::asDELIVERYSTATUS_DELIVERED};
        benchmark::DoNotOptimize(reports.ApplyReceipt(receipt, ReceiptMatch::kLoose));
        reports.Remove(Hex(next++ - size));
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["bytes/report"] = static_cast<double>(memory) / size;
}
BENCHMARK(ReportsAtSize)->Arg(1000)->Arg(100'000)->Arg(10'000'000);

// What a sender waits for while another thread saves.
void ReportsWhileSaving(benchmark::State& state) {
    CSmsDeliveryReports reports;
    for (std::uint32_t i = 0; i < 1'000'000; ++i) SendOne(reports, i);
    std::atomic<bool> done = false;
    std::thread saver([&] {
        while (!done) benchmark::DoNotOptimize(reports.SaveText());
    });
    using Clock = std::chrono::steady_clock;
    Clock::duration longest{};
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(reports.Query("00000010"));
        longest = std::max(longest, Clock::now() - start);
    }
    done = true;
    saver.join();
    state.counters["longest us"] =
        static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(longest).count());
}
BENCHMARK(ReportsWhileSaving)->Iterations(1'000'000);

}  // namespace
