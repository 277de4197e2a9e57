// Frames for dialled providers built, and replies judged, per second.
#include "Common/UcpTap/SMSCMessage.h"
#include "Common/UcpTap/TapResponse.h"
#include "Common/UcpTap/UcpResponse.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t kUsualText = 40;  // characters

void BuildUcpFrame(benchmark::State& state) {
    const std::u16string text(static_cast<std::size_t>(state.range(0)), u'x');
    CSMSCMessage message;
    for (auto _ : state) {
        if (message.BuildUcp("0612345678", "1234", "secret", text) != result::Success) {
            state.SkipWithError("refused");
            break;
        }
        benchmark::DoNotOptimize(message.Frame().data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildUcpFrame)->Arg(kUsualText)->Arg(160);

void BuildTapBlock(benchmark::State& state) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'x');
    CSMSCMessage message;
    for (auto _ : state) {
        if (message.BuildTap("0612345678", text) != result::Success) {
            state.SkipWithError("refused");
            break;
        }
        benchmark::DoNotOptimize(message.Frame().data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildTapBlock)->Arg(kUsualText)->Arg(160);

void JudgeUcpReply(benchmark::State& state) {
    const std::string heard =
        "\x02"
        "01/00042/R/01/A/0612345678:010203040506/FE\x03";
    for (auto _ : state) {
        UcpResponse reply(FindUcpFrame(heard).octets);
        benchmark::DoNotOptimize(reply);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(JudgeUcpReply);

void JudgeTapReply(benchmark::State& state) {
    const std::string heard = "211 Page accepted\r\x06\r";
    for (auto _ : state) {
        TapResponse reply(heard);
        benchmark::DoNotOptimize(reply);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(JudgeTapReply);

}  // namespace
