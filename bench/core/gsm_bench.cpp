// PDUs per second, one core.
#include "Measures.h"
#include "gsm/GsmCodec.h"
#include "gsm/GsmModem.h"
#include "gsm/GsmStatusPdu.h"
#include "gsm/PDUDecode.h"
#include "support/ScriptedModem.h"

#include <ctime>
#include <random>

namespace {

// Many messages that differ in everything that the wire's time could depend on.
constexpr std::size_t kMessages = 512;

enum Kind : std::int64_t { kGsm160, kUcs2Of70, kFiveParts };

struct Message {
    std::string recipient;
    std::u16string text;
    std::int32_t format;
};

// GSM text of so many septets as people write it: words and digits, now and then a letter with an accent, a
// Greek one or one that takes an escape.
std::u16string GsmText(std::mt19937& random, std::size_t septets) {
    constexpr std::u16string_view kPlain =
        u"eeeeeetttttaaaaooooiiiinnnnsssshhhrrrddlluucmwfgypbvkjxqz      "
        u",.!?:'\"()0123456789ABCDEFGHILMNOPRST";
    constexpr std::u16string_view kRare = u"@$_\u00E9\u00E8\u00FC\u00F6\u00E4\u00DF\u00F1\u00A3\u03A9\u0394";
    constexpr std::u16string_view kEscaped = u"\u20AC[]{}~^|\\";
    std::u16string text;
    for (std::size_t used = 0; used < septets;) {
        const std::uint32_t dice = random() % 200;
        const bool escaped = dice == 0 && used + 2 <= septets;
        const std::u16string_view from = escaped ? kEscaped : dice < 8 ? kRare : kPlain;
        text += from[random() % from.size()];
        used += escaped ? 2 : 1;
    }
    return text;
}

std::vector<Message> Messages(std::int64_t kind) {
    std::mt19937 random(20'26);
    std::vector<Message> messages(kMessages);
    for (Message& message : messages) {
        message.recipient = "+316" + std::to_string(10'000'000 + random() % 90'000'000);
        if (kind == kUcs2Of70) {
            message.format = 20;
            for (int i = 0; i < 70; ++i) message.text += static_cast<char16_t>(0x4E00 + random() % 0x5000);
        } else {
            message.format = kind == kGsm160 ? 0 : 2;
            message.text = GsmText(random, kind == kGsm160 ? 160 : 5 * 153);
        }
    }
    return messages;
}

void SplitTo(std::vector<std::string>& pdus, std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at = text.find(';', at) + 1)
        pdus.emplace_back(text.substr(at, text.find(';', at) - at));
}

void Encode(benchmark::State& state) {
    const std::vector<Message> messages = Messages(state.range(0));
    CGsmCodec codec;
    std::vector<std::string> pdus;
    for (const Message& message : messages) {
        if (codec.Encode({"", message.recipient, message.text, message.format}) != 0)
            state.SkipWithError("encode failed");
        SplitTo(pdus, codec.Text());
    }
    measures::PerItem measured(state);
    for (auto _ : state) {
        for (const Message& message : messages) {
            benchmark::DoNotOptimize(codec.Encode({"", message.recipient, message.text, message.format}));
            benchmark::DoNotOptimize(codec.Text().data());
        }
    }
    measured.Report(pdus, state.iterations() * static_cast<std::int64_t>(pdus.size()));
}
BENCHMARK(Encode)->ArgName("160gsm_70ucs2_5parts")->Arg(kGsm160)->Arg(kUcs2Of70)->Arg(kFiveParts);

// Time is read in a zone with summer time, whatever the machine's own.
void UseSummerTime() {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
}

// A service-centre time stamp of the last year, to the second, in semi-octets.
std::string TimeStamp(std::mt19937& random) {
    const auto swapped = [](std::uint32_t value) {
        return std::string{static_cast<char>('0' + value % 10), static_cast<char>('0' + value / 10)};
    };
    return swapped(25 + random() % 2) + swapped(1 + random() % 12) + swapped(1 + random() % 28) +
           swapped(random() % 24) + swapped(random() % 60) + swapped(random() % 60) + "00";
}

// The submit PDUs of the encoder, turned into what a network delivers.
std::vector<std::string> Delivered(std::int64_t kind) {
    CGsmCodec codec;
    std::vector<std::string> submits;
    for (const Message& message : Messages(kind)) {
        (void)codec.Encode({"", message.recipient, message.text, message.format});
        SplitTo(submits, codec.Text());
    }
    std::mt19937 random(11);
    std::vector<std::string> pdus;
    for (const std::string& submit : submits) {
        // 00 first MR address PID DCS data -> service centre first address PID DCS time stamp data
        pdus.push_back("07911356131313F3" + std::string(submit[2] == '4' ? "44" : "04") +
                       submit.substr(6, 20) + TimeStamp(random) + submit.substr(26));
    }
    return pdus;
}

void Decode(benchmark::State& state) {
    UseSummerTime();
    const std::vector<std::string> pdus = Delivered(state.range(0));
    measures::PerItem measured(state);
    for (auto _ : state) {
        for (const std::string& pdu : pdus) {
            CPDUDecode decode;
            benchmark::DoNotOptimize(decode.Decode(pdu));
            benchmark::DoNotOptimize(decode.body.data());
        }
    }
    measured.Report(pdus, state.iterations() * static_cast<std::int64_t>(pdus.size()));
}
BENCHMARK(Decode)->ArgName("160gsm_70ucs2_5parts")->Arg(kGsm160)->Arg(kUcs2Of70)->Arg(kFiveParts);

void DecodeReport(benchmark::State& state) {
    UseSummerTime();
    std::mt19937 random(12);
    std::vector<std::string> pdus;
    for (std::size_t i = 0; i < kMessages; ++i) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const std::string reference{kDigits[random() % 16], kDigits[random() % 16]};
        pdus.push_back("07911356131313F306" + reference + "0B911316325476F8" + TimeStamp(random) +
                       TimeStamp(random) + "00");
    }
    measures::PerItem measured(state);
    for (auto _ : state) {
        for (const std::string& pdu : pdus) {
            CGsmStatusPdu status(pdu);
            benchmark::DoNotOptimize(status.Decode());
            benchmark::DoNotOptimize(status.report.data());
        }
    }
    measured.Report(pdus, state.iterations() * static_cast<std::int64_t>(pdus.size()));
}
BENCHMARK(DecodeReport);

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
