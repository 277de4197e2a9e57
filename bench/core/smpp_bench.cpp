// The SMPP codec and the session over loopback, beside a client that does nothing else.
#include "MinimalClient.h"
#include "SmppSink.h"
#include "foundation/Hex.h"
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
    const auto start = std::chrono::steady_clock::now();
    if (!RunMinimalClient(sink.Port(), static_cast<int>(state.range(0)), count))
        state.SkipWithError("no connection");
    const double minimal =
        count / std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (auto _ : state) {
        CSmppProtocol smpp;
        smpp.settings.server = "127.0.0.1";
        smpp.settings.serverPort = sink.Port();
        smpp.SetAdvancedSettings("SmppWindowSize=" + std::to_string(state.range(0)));
        if (smpp.Connect() != 0) state.SkipWithError("no connection");
        const auto begin = std::chrono::steady_clock::now();
        std::string last;
        for (int i = 0; i < count; ++i) (void)smpp.Send(message, last);
        queuing = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        while (!IsCompletedStatus(smpp.Reports().Query(last)->status)) SystemClock().Sleep(1);
        smpp.Disconnect();
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.counters["queued/s"] = count / queuing;
    state.counters["minimal/s"] = minimal;
    // Of the minimal client's time for one message to ours.
    state.counters["ratio"] =
        benchmark::Counter(count / minimal, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(Session)->ArgName("window")->Arg(1)->Arg(10)->Arg(100)->UseRealTime()->Unit(
    benchmark::kMillisecond);

// So many messages in the queue of a session, all sent and answered: the time of one, and what one takes up.
void QueueOfLength(benchmark::State& state) {
    const auto length = static_cast<std::uint32_t>(state.range(0));
    const std::string pdu = BenchSubmit();
    CKorBase log("Bench");
    SmppSettings settings;
    std::string answer(
        "\0\0\0\x19\x80\0\0\x04\0\0\0\0\0\0\0\0"
        "00000000",
        25);
    const auto number = [&answer](std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) answer[at + i] = static_cast<char>(value >> (24 - 8 * i));
    };
    double memory = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        CSmsDeliveryReports reports;
        CSmsMessagesX received;
        CSmppSession session(log, settings, reports, received, SystemClock());
        session.StartBind();
        session.OnBytes({"\0\0\0\x11\x80\0\0\x09\0\0\0\0\0\0\0\1\0", 17});
        std::string reference;
        for (std::uint32_t i = 0; i < length; ++i) {
            reference.clear();
            hex::AppendNumber(reference, i);
            reports.RecordSent(reference, ReportWanted::kSubmitRequested);
            session.Queue({pdu, reference, false});
        }
        memory = static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd - before) / length;
        for (std::uint32_t answered = 0; answered < length;) {
            session.OnTick();
            session.Output().clear();
            for (std::size_t i = session.InFlight(); i > 0; --i) {
                ++answered;
                number(12, answered + 1);  // the bind took the first
                std::string id;
                hex::AppendNumber(id, answered);
                answer.replace(16, 8, id);
                session.OnBytes(answer);
            }
        }
        if (reports.Query(reference)->status != sms::asDELIVERYSTATUS_SUBMITTED)
            state.SkipWithError("not answered");
    }
    state.SetItemsProcessed(state.iterations() * length);
    state.counters["bytes/message"] = memory;
}
BENCHMARK(QueueOfLength)->RangeMultiplier(10)->Range(1000, 100'000)->Unit(benchmark::kMillisecond);

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
        benchmark::DoNotOptimize(reports.ApplyReceipt(*ParseReceipt(texts[i]), ReceiptMatch::kLoose));
        if (++i == texts.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(MatchReceipts)->RangeMultiplier(10)->Range(1000, 100'000);

}  // namespace
