// The received-message store and the delivery reports, and how their cost grows with what they hold.
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <string>

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

void ReportsAtSize(benchmark::State& state) {
    CSmsDeliveryReports reports;
    const auto size = static_cast<std::uint32_t>(state.range(0));
    for (std::uint32_t i = 0; i < size; ++i) {
        const std::string reference = std::to_string(i * 7919);
        reports.RecordSent(reference, ReportWanted::kYes);
        reports.RecordProviderReference(reference, "A" + reference);
    }
    std::uint32_t i = 0;
    for (auto _ : state) {
        const std::string reference = std::to_string((i++ % size) * 7919);
        benchmark::DoNotOptimize(reports.ApplyReceipt({"A" + reference, 2, 1, 0}));
        benchmark::DoNotOptimize(reports.Query(reference));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ReportsAtSize)->RangeMultiplier(10)->Range(1000, 100'000);

}  // namespace
