// The SMPP codec and the session over loopback, beside a client that does nothing else.
#include "MinimalClient.h"
#include "SmppSink.h"
#include "smpp/SmppProtocol.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

void FillSubmit(CSmppSubmitSm& pdu) {
    pdu.source_addr = "1234";
    pdu.dest_addr_ton = 1;
    pdu.dest_addr_npi = 1;
    pdu.destination_addr = "31612345678";
    pdu.registered_delivery = 1;
    pdu.short_message = std::string(160, 'x');
}

void EncodeSubmit(benchmark::State& state) {
    CSmppSubmitSm pdu;
    FillSubmit(pdu);
    for (auto _ : state) {
        pdu.sequence_number++;
        pdu.Encode();
        benchmark::DoNotOptimize(pdu.Data().data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(EncodeSubmit);

void DecodeSubmit(benchmark::State& state) {
    CSmppSubmitSm from;
    FillSubmit(from);
    from.Encode();
    const std::vector<std::uint8_t> octets(from.Data().begin(), from.Data().end());
    CSmppSubmitSm pdu;
    for (auto _ : state) {
        pdu.SetData(octets);
        pdu.Decode();
        benchmark::DoNotOptimize(pdu.short_message.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(DecodeSubmit);

void MinimalClient(benchmark::State& state) {
    const SmppSink sink;
    const int count = state.range(0) == 1 ? 20'000 : 100'000;
    for (auto _ : state) {
        if (!RunMinimalClient(sink.Port(), static_cast<int>(state.range(0)), count))
            state.SkipWithError("no connection");
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(MinimalClient)
    ->ArgName("window")
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void Session(benchmark::State& state) {
    const SmppSink sink;
    const int count = state.range(0) == 1 ? 20'000 : 100'000;
    const CSmsMessageX message = BenchMessage();
    double queuing = 0;
    std::size_t memory = 0;
    for (auto _ : state) {
        CSmppProtocol smpp;
        smpp.parameters.server = "127.0.0.1";
        smpp.parameters.serverPort = sink.Port();
        smpp.SetAdvancedSettings("SmppWindowSize=" + std::to_string(state.range(0)));
        if (smpp.Connect() != 0) state.SkipWithError("no connection");
        const std::size_t before = mallinfo2().uordblks;
        const auto start = std::chrono::steady_clock::now();
        std::string last;
        for (int i = 0; i < count; ++i) (void)smpp.Send(message, last);
        queuing = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        memory = mallinfo2().uordblks - before;
        while (!IsCompletedStatus(smpp.Reports().Query(last)->status)) SystemClock().Sleep(1);
        smpp.Disconnect();
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.counters["queued/s"] = count / queuing;
    state.counters["bytes/message"] = static_cast<double>(memory) / count;
}
BENCHMARK(Session)->ArgName("window")->Arg(1)->Arg(10)->Arg(100)->UseRealTime()->Unit(
    benchmark::kMillisecond);

// Receipts matched per second when so many messages are known.
void MatchReceipts(benchmark::State& state) {
    CSmsDeliveryReports reports;
    const auto size = static_cast<std::uint32_t>(state.range(0));
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < size; ++i) {
        const std::string id = std::to_string(10'000'000 + i * 7);
        reports.RecordSent(id, ReportWanted::kYes);
        reports.RecordProviderReference(id, "A" + id);
        texts.push_back(
            "id:A" + id +
            " sub:001 dlvrd:001 submit date:2311150000 done date:2311150001 stat:DELIVRD err:000 text:");
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(reports.ApplyReceipt(*ParseReceipt(texts[i])));
        if (++i == texts.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(MatchReceipts)->RangeMultiplier(10)->Range(1000, 100'000);

}  // namespace
