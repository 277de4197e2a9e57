// PDUs per second, one core.
#include "gsm/GsmCodec.h"
#include "gsm/GsmModem.h"
#include "gsm/PDUDecode.h"
#include "support/ScriptedModem.h"

#include <benchmark/benchmark.h>

namespace {

struct Body {
    std::u16string text;
    std::int32_t format;
};

Body BodyOf(std::int64_t kind) {
    if (kind == 0) return {std::u16string(160, u'x'), 0};
    if (kind == 1) return {std::u16string(70, u'\u4E2D'), 20};
    return {std::u16string(5 * 153, u'x'), 2};
}

void Encode(benchmark::State& state) {
    const Body body = BodyOf(state.range(0));
    CGsmCodec codec;
    std::int64_t pdus = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(codec.Encode({"", "+31612345678", body.text, body.format}));
        pdus += state.range(0) == 2 ? 5 : 1;
        benchmark::DoNotOptimize(codec.Text().data());
    }
    state.SetItemsProcessed(pdus);
}
BENCHMARK(Encode)->ArgName("160gsm_70ucs2_5parts")->Arg(0)->Arg(1)->Arg(2);

// The submit PDUs of the encoder, turned into what a network delivers.
std::vector<std::string> Delivered(std::int64_t kind) {
    const Body body = BodyOf(kind);
    CGsmCodec codec;
    (void)codec.Encode({"", "+31612345678", body.text, body.format});
    std::vector<std::string> pdus;
    std::string text = codec.Text();
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find(';', at);
        const std::string submit = text.substr(at, end - at);
        // 00 first MR address PID DCS data -> 00 first address PID DCS time stamp data
        std::string deliver =
            "00" + std::string(submit[2] == '4' ? "44" : "04") + submit.substr(6, 20) + "62111240618000";
        pdus.push_back(deliver + submit.substr(26));
        at = end + 1;
    }
    return pdus;
}

void Decode(benchmark::State& state) {
    const std::vector<std::string> pdus = Delivered(state.range(0));
    for (auto _ : state) {
        for (const std::string& pdu : pdus) {
            CPDUDecode decode;
            benchmark::DoNotOptimize(decode.Decode(pdu));
            benchmark::DoNotOptimize(decode.body.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pdus.size()));
}
BENCHMARK(Decode)->ArgName("160gsm_70ucs2_5parts")->Arg(0)->Arg(1)->Arg(2);

// One Send against a modem that answers at once; the prescribed waits pass in virtual time.
void SendDialogue(benchmark::State& state) {
    VirtualClock clock;
    ScriptedModem modem(clock);
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\",\"ME\"),(\"SM\")\r\n\r\nOK\r\n"});
    modem.On("AT+CMGF=?", {"\r\n+CMGF: (0,1)\r\n\r\nOK\r\n"});
    modem.On("AT+CMGS=14", {"\r\n> "});
    modem.On("0001000B911316325476F800000161", {"\r\n+CMGS: 17\r\n\r\nOK\r\n"});
    CGsmModem gsm(modem, clock);
    gsm.settings.device = "COM1";
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    message.Data = u"a";
    std::string references;
    for (auto _ : state) {
        if (gsm.Send(message, references) != 0) state.SkipWithError("send failed");
        modem.commands.clear();
        modem.written.clear();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SendDialogue);

}  // namespace
