// Calls to a provider through a scripted modem, in virtual time.
#include "dialup/DialupProtocol.h"
#include "foundation/IniFile.h"
#include "sms/DeviceOptions.h"
#include "support/Octets.h"
#include "support/ScriptedModem.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Pieces = ScriptedModem::Pieces;

constexpr std::int32_t kUcp = sms::asPROVIDERTYPE_UCP;
constexpr std::int32_t kTap = sms::asPROVIDERTYPE_TAP_DEFAULT;

// ms
constexpr std::uint64_t kOpening = 500;
constexpr std::uint64_t kAroundFrame = 500 + 500;
constexpr std::uint64_t kIdentification = 1000 + 50;
constexpr std::uint64_t kBeforeTapReply = 3000;
constexpr std::uint64_t kBeforeEnd = 50 + 1000;
constexpr std::uint64_t kHangUp = 3000;  // when nothing answers

const std::string kFrame = OctetText("02 '01/00040/O/01/0612345678/1234//3/4869/8E' 03");
const std::string kAck = OctetText("02 '01/00034/R/01/A/0612345678:090196/8A' 03");
const std::string kBlock = OctetText("02 '0612345678' 0D 'Hi' 0D 03");
const std::string kBlockChecksum = "2=:";

// A provider behind the modem. What it hears ends in a carriage return, but for a UCP frame: that one is
// heard together with the command that hangs up, so its answers come at times counted from dialling.
struct Call {
    explicit Call(std::int32_t type = kUcp) : modem(clock), dialup(modem, clock) {
        dialup.settings.device = "COM3";
        dialup.settings.providerType = type;
        dialup.settings.dialString = "0201234567";
        modem.On("ATD0201234567", {"\r\nCONNECT 9600\r\n"});
        modem.On("", {"ID="});
        modem.On("\x1BPG1", {"110 1.8\r\x06\r\x1B[p\r"});
        modem.On(kBlock.substr(0, 11), {""});
        modem.On("Hi", {""});
        modem.On("\x03" + kBlockChecksum, {"211 ok\r\x06\r"});
        modem.On("\x04", {"\x1B\x04\r"});
        modem.On("+++ATH0", {"\r\nOK\r\n"});
        modem.On(kFrame + "+++ATH0", {"\r\nOK\r\n"});
        message.Recipient = "0612345678";
        message.Sender = "1234";
        message.Data = u"Hi";
    }
    std::int32_t Send() { return dialup.Send(message).Number(); }
    // Octets that come so many ms after the frame was written.
    void Replies(std::uint32_t after, const std::string& octets) {
        modem.GiveAfter(static_cast<std::uint32_t>(kOpening + 500) + after, octets);
    }
    std::uint64_t Spent() const { return clock.Slept(); }

    VirtualClock clock;
    ScriptedModem modem;
    CDialupProtocol dialup;
    CSmsMessageX message;
};

TEST(Dialup, SendsOverUcp) {
    Call call;
    call.Replies(700, kAck);
    EXPECT_EQ(call.Send(), 0);
    EXPECT_EQ(call.dialup.ProviderResponse(), "A/0612345678:090196");
    EXPECT_EQ(call.modem.written, "ATE0\rATD0201234567\r" + kFrame + "+++ATH0\r");
    EXPECT_EQ(call.Spent(), kOpening + 500 + 700);
    EXPECT_EQ(call.modem.closings, 1);

    Call atOnce;
    atOnce.Replies(0, kAck);
    EXPECT_EQ(atOnce.Send(), 0);
    EXPECT_EQ(atOnce.Spent(), kOpening + kAroundFrame);
}

TEST(Dialup, SendsOverTap) {
    const std::string upToBlock = "ATE0\rATD0201234567\r\r\x1BPG1\r" + kBlock + kBlockChecksum + "\r";
    struct Row {
        std::int32_t type;
        std::string end;
        std::uint64_t time;
    };
    for (const Row& row : std::vector<Row>{
             {sms::asPROVIDERTYPE_TAP_DEFAULT, "\x04\r", kBeforeEnd},
             {sms::asPROVIDERTYPE_TAP_NOLF, "\x04\r", kBeforeEnd},
             {sms::asPROVIDERTYPE_TAP_NOEOT, "", 0},
         }) {
        Call call(row.type);
        EXPECT_EQ(call.Send(), 0);
        EXPECT_EQ(call.dialup.ProviderResponse(), "211 ok");
        EXPECT_EQ(call.modem.written, upToBlock + row.end + "+++ATH0\r");
        EXPECT_EQ(call.Spent(), kOpening + kIdentification + kAroundFrame + kBeforeTapReply + row.time);
    }
    Call secret(kTap);
    secret.dialup.settings.providerPassword = "123456";
    secret.modem.On(
        "\x1BPG1"
        "123456",
        {"\x1B[p\r"});
    EXPECT_EQ(secret.Send(), 0);
}

TEST(Dialup, ChecksBeforeItDials) {
    const std::string huge(65'536, '7');
    const std::u16string longest(160, u'x');
    struct Row {
        const char* name;
        std::int32_t type;
        void (*set)(Call& call);
        std::int32_t code;
    };
    for (const Row& row : std::vector<Row>{
             {"no recipient", kUcp, [](Call& c) { c.message.Recipient = ""; }, 34031},
             {"a name", kTap, [](Call& c) { c.message.Recipient = "Home"; }, 34031},
             {"a huge recipient", kUcp, [](Call& c) { c.message.Recipient.assign(65'536, '7'); }, 34031},
             {"recipient before text", kUcp,
              [](Call& c) {
                  c.message.Recipient = "1\r";
                  c.message.Data.assign(161, u'x');
              },
              34031},
             {"161 characters", kUcp, [](Call& c) { c.message.Data.assign(161, u'x'); }, 34033},
             {"161 octets", kTap, [](Call& c) { c.message.Data.assign(161, u'x'); }, 34033},
             {"64 KiB", kTap, [](Call& c) { c.message.Data.assign(65'536, u'x'); }, 34033},
             {"huge UCP password", kUcp,
              [](Call& c) { c.dialup.settings.providerPassword.assign(65'536, 'x'); }, 34033},
             {"huge TAP password", kTap,
              [](Call& c) { c.dialup.settings.providerPassword.assign(65'536, 'x'); }, 34033},
             {"huge originator", kUcp, [](Call& c) { c.message.Sender.assign(65'536, 'x'); }, 34033},
             {"text before dial string", kUcp,
              [](Call& c) {
                  c.message.Data.assign(161, u'x');
                  c.dialup.settings.dialString = "";
              },
              34033},
             {"no dial string", kUcp, [](Call& c) { c.dialup.settings.dialString = ""; }, 34010},
             {"a command in the dial string", kTap, [](Call& c) { c.dialup.settings.dialString = "1;+CPIN"; },
              34010},
             {"a dial string of tones", kTap, [](Call& c) { c.dialup.settings.dialString = "T123"; }, 34010},
         }) {
        SCOPED_TRACE(row.name);
        Call call(row.type);
        row.set(call);
        EXPECT_EQ(call.Send(), row.code);
        EXPECT_EQ(call.modem.openings, 0);
        EXPECT_EQ(call.Spent(), 0U);
    }
    for (const std::int32_t type : {kUcp, kTap, 4, -1}) {
        Call call(type);
        call.message.Data = longest;
        call.modem.openResult = result::PortOpenFailed;
        EXPECT_EQ(call.Send(), 30104);  // it fits
    }
}

TEST(Dialup, OpensTheDeviceAsTheProviderWants) {
    struct Row {
        std::int32_t deviceSpeed, providerSpeed, settings;
        std::uint32_t speed, parity, dataBits, stopBits;
    };
    for (const Row& row : std::vector<Row>{{0, 0, sms::asDEVICESETTINGS_DEFAULT, 115'200, 0, 0, 0},
                                           {9600, 0, sms::asDEVICESETTINGS_8N1, 9600, 1, 8, 1},
                                           {9600, 300, sms::asDEVICESETTINGS_7E1, 300, 3, 7, 1},
                                           {9600, 300, 17, 300, 0, 0, 0}}) {
        Call call;
        call.dialup.settings.deviceSpeed = row.deviceSpeed;
        call.dialup.settings.providerSpeed = row.providerSpeed;
        call.dialup.settings.providerSettings = row.settings;
        call.dialup.settings.flowControl = sms::asDEVICEFLOWCONTROL_ENABLE;
        (void)call.Send();
        EXPECT_EQ(call.modem.settings.speed, row.speed);
        EXPECT_EQ(call.modem.settings.parity, row.parity);
        EXPECT_EQ(call.modem.settings.dataBits, row.dataBits);
        EXPECT_EQ(call.modem.settings.stopBits, row.stopBits);
        EXPECT_EQ(call.modem.settings.ctsFlow, 2U);
    }
}

TEST(Dialup, DialsInTonesOrPulses) {
    struct Row {
        std::int32_t mode;
        const char* dialString;
        const char* command;
    };
    for (const Row& row : {Row{0, "123", "ATD123"}, Row{1, "123", "ATDP123"}, Row{2, "123", "ATDP123"},
                           Row{1, "T123", "ATDT123"}, Row{1, "0P123", "ATD0P123"}, Row{1, "P", "ATDPP"},
                           Row{0, "P1", "ATDP1"}}) {
        EXPECT_EQ(DialCommand(row.mode, row.dialString), row.command);
    }
    Call call;
    call.dialup.settings.dialMode = sms::asDIALMODE_PULSE;
    call.modem.On("ATDP0201234567", {"\r\nBUSY\r\n"});
    EXPECT_EQ(call.Send(), 30351);
}

TEST(Dialup, WithoutAConnectionNothingIsSent) {
    struct Row {
        const char* name;
        const char* deviceInit;
        const char* providerInit;
        Pieces dialled;
        const char* written;
        std::uint64_t time;
    };
    const char* const dialled = "ATE0\rATD0201234567\r";
    for (const Row& row : std::vector<Row>{
             {"busy", "", "", {{0, "\r\nBUSY\r\n"}}, dialled, 0},
             {"no carrier", "", "", {{30'000, "\r\nNO CARRIER\r\n"}}, dialled, 30'000},
             {"no answer", "", "", {{0, "\r\nNO ANSWER\r\n"}}, dialled, 0},
             {"no dialtone", "", "", {{0, "\r\nNO DIALTONE\r\n"}}, dialled, 0},
             {"error", "", "", {{0, "\r\nERROR\r\n"}}, dialled, 0},
             {"a mere OK", "", "", {{0, "\r\nOK\r\n"}}, dialled, 0},
             {"silence", "", "", {}, dialled, 90'000},
             {"garbage", "", "", {{0, "\r\n\x7F~x{\r\n"}}, dialled, 90'000},
             {"too late", "", "", {{90'100, "\r\nCONNECT\r\n"}}, dialled, 90'000},
             {"init", "AT&F;ATX3", "ATM0;;BAD;ATL0", {}, "AT&F\rATX3\rATM0\rBAD\r", 0},
             {"silent init", "", "MUTE;ATM0", {}, "MUTE\r", 2000},
         }) {
        SCOPED_TRACE(row.name);
        Call call;
        call.dialup.settings.deviceInitString = row.deviceInit;
        call.dialup.settings.providerInitString = row.providerInit;
        call.modem.OnInPieces("ATD0201234567", row.dialled);
        call.modem.On("BAD", {"\r\nERROR\r\n"});
        call.modem.On("MUTE", {""});
        EXPECT_EQ(call.Send(), 30351);
        EXPECT_EQ(call.modem.written, row.written);
        EXPECT_EQ(call.Spent(), kOpening + row.time);
        EXPECT_EQ(call.modem.closings, 1);
    }
    Call dead;
    dead.modem.dead = true;
    EXPECT_EQ(dead.Send(), 30351);
    EXPECT_EQ(dead.Spent(), kOpening + 5000 + 90'000);
    Call taken;
    taken.modem.openResult = result::PortOpenFailed;
    EXPECT_EQ(taken.Send(), 30104);
    EXPECT_EQ(taken.Spent(), 0U);
}

TEST(Dialup, AModemThatDoesNotObeyAte0IsDialledAllTheSame) {
    Call call;
    call.modem.On("ATE0", {"\r\nERROR\r\n"});
    call.Replies(0, kAck);
    EXPECT_EQ(call.Send(), 0);
}

TEST(Dialup, WhatComesWithTheConnectionIsNoReply) {
    Call call;
    call.modem.On("ATD0201234567", {"\r\nCONNECT\r\n" + kAck});
    EXPECT_EQ(call.Send(), 33461);
}

TEST(Dialup, JudgesUcpReplies) {
    const std::string refused = OctetText("02 '01/00022/R/01/N/02//07' 03");
    struct Row {
        const char* name;
        Pieces replies;  // ms after the frame
        std::int32_t code;
        const char* response;
        std::uint64_t time;  // after the frame
    };
    const std::string half = kAck.substr(0, 20), rest = kAck.substr(20);
    for (const Row& row : std::vector<Row>{
             {"refused", {{500, refused}}, 33463, "N/02", 500},
             {"syntax", {{500, "\x02what\x03"}}, 33462, "", 500},
             {"silence", {}, 33461, "", 500 + 7 * 4000},
             {"the last moment", {{28'490, kAck}}, 0, "A/0612345678:090196", 28'490},
             {"too late", {{28'510, kAck}}, 33461, "", 28'500},
             {"noise before", {{500, "\x7F~\x03" + kAck}}, 0, "A/0612345678:090196", 500},
             {"noise long before", {{500, "\x7F~"}, {9000, kAck}}, 0, "A/0612345678:090196", 9000},
             {"noise alone", {{500, "\x7F~"}}, 33462, "", 28'500},
             {"in halves", {{4400, half}, {4600, rest}}, 0, "A/0612345678:090196", 4600},
             {"half of it", {{4400, half}}, 33462, "", 28'500},
             {"echo", {{500, kFrame + kAck}}, 0, "A/0612345678:090196", 500},
             {"echo long before", {{500, kFrame}, {9000, kAck}}, 0, "A/0612345678:090196", 9000},
             {"echo alone", {{500, kFrame}}, 33461, "", 28'500},
             {"two replies", {{500, kAck + refused}}, 0, "A/0612345678:090196", 500},
         }) {
        SCOPED_TRACE(row.name);
        for (const std::size_t fragment : {0, 1}) {
            Call call;
            call.modem.Fragment(fragment);
            for (const auto& [when, octets] : row.replies) call.Replies(when, octets);
            EXPECT_EQ(call.Send(), row.code);
            EXPECT_EQ(call.dialup.ProviderResponse(), row.response);
            EXPECT_TRUE(call.modem.written.ends_with("+++ATH0\r"));
            EXPECT_EQ(call.Spent(), kOpening + 500 + row.time);
        }
    }
}

TEST(Dialup, IdentifiesItselfToATerminal) {
    struct Row {
        const char* name;
        std::vector<std::string> syncs;
        std::vector<std::string> logons;
        std::int32_t code;
        std::string written;  // behind dialling
        std::uint64_t time;   // of the identification
    };
    const std::string logon = "\x1BPG1\r";
    for (const Row& row : std::vector<Row>{
             {"parity", {"\xC9\x44\xBD"}, {"\x1B\xDB\xF0\x8D"}, 0, "\r" + logon, 1050},
             {"more words", {"Hello\r\nID=?"}, {"\x06\r\x1B[p\rWelcome\r"}, 0, "\r" + logon, 1050},
             {"echo", {"\rID="}, {"\x1BPG1\r\x1B[p\r"}, 0, "\r" + logon, 1050},
             {"a second attempt", {"", "ID="}, {"\x1B[p\r"}, 0, "\r\r" + logon, 1000 + 10 * 1050 + 50},
             {"no identification",
              {"ID="},
              {"", "\x15\r", "\x1B[p\r"},
              0,
              "\r" + logon + "\r" + logon + "\r" + logon,
              1000 + 50 + 10'000 + 50 + 10'000 + 50},
             {"silence", {""}, {""}, 33501, "\r\r\r", 1000 + 3 * 10 * 1050},
             {"never identified",
              {"ID="},
              {"\x1B[p"},
              33501,
              "\r" + logon + "\r" + logon + "\r" + logon,
              1000 + 3 * (50 + 10'000)},
         }) {
        SCOPED_TRACE(row.name);
        for (const std::size_t fragment : {0, 1}) {
            Call call(kTap);
            call.modem.Fragment(fragment);
            call.modem.On("", row.syncs);
            call.modem.On("\x1BPG1", row.logons);
            call.modem.On("\x03" + kBlockChecksum, {"\x06\r"});
            EXPECT_EQ(call.Send(), row.code);
            const std::string dialled = "ATE0\rATD0201234567\r";
            EXPECT_EQ(call.modem.written.substr(dialled.size(), row.written.size()), row.written);
            const std::uint64_t rest = row.code == 0 ? kAroundFrame + kBeforeTapReply + kBeforeEnd : 0;
            EXPECT_EQ(call.Spent(), kOpening + row.time + rest);
            if (row.code != 0) EXPECT_EQ(call.modem.written, dialled + row.written);
        }
    }
}

TEST(Dialup, JudgesTapReplies) {
    struct Row {
        const char* name;
        Pieces replies;  // ms after the block
        std::int32_t code;
        const char* response;
        std::uint64_t time;  // after the block
    };
    const std::string echo = kBlock + kBlockChecksum + "\r";
    for (const Row& row : std::vector<Row>{
             {"acknowledged", {{0, "\x06\r"}}, 0, "", 3500},
             {"parity", {{0, "\x06\x8D"}}, 0, "", 3500},
             {"a line first", {{0, "\r\n211 ok\r\n\x06\r\n"}}, 0, "", 3500},
             {"in two reads", {{5400, "211 ok\r\x06"}, {6000, "\r"}}, 0, "211 ok", 6500},
             {"a line in two reads", {{5400, "211 Pa"}, {6000, "ge ok\r\x06\r"}}, 0, "211 Page ok", 6500},
             {"the same with parity", {{5400, "\xE1\xE2"}, {6000, "\xE3\x8D\x06\r"}}, 0, "abc", 6500},
             {"a line a read", {{5400, "wait\r"}, {6000, "211 ok\r\x06\r"}}, 0, "211 ok", 6500},
             {"submitted", {{4000, "Message submitted"}}, 0, "Message submitted", 5500},
             {"submitted, with its line end", {{4000, "Message submitted\r"}}, 0, "Message submitted", 4000},
             {"invalid", {{0, "514 INVALID PAGER\r\x1E\r"}}, 34031, "514 INVALID PAGER", 3500},
             {"blocked", {{0, "not allowed\r\n"}}, 33503, "not allowed", 3500},
             {"system", {{0, "system problem\r\n"}}, 33505, "system problem", 3500},
             {"NAK", {{0, "\x15\r"}}, 33505, "", 3500},
             {"RS", {{0, "\x1E\r"}}, 33505, "", 3500},
             {"silence", {}, 33505, "", 500 + 3000 + 4 * 2000 + 3 * 1000},
             {"other words", {{0, "wait\r"}, {6600, "\x7Fwait\r"}}, 33505, "wait", 14'500},
             {"the last moment", {{14'490, "\x06\r"}}, 0, "", 14'490},
             {"too late", {{14'510, "\x06\r"}}, 33505, "", 14'500},
             {"echo", {{0, echo + "\x06\r"}}, 0, "", 3500},
             {"echo in two reads",
              {{5400, echo.substr(0, 9)}, {6000, echo.substr(9) + "ok\r\x06\r"}},
              0,
              "ok",
              6500},
             {"echo alone", {{0, echo}}, 33505, "", 14'500},
         }) {
        SCOPED_TRACE(row.name);
        for (const std::size_t fragment : {0, 1}) {
            Call call(kTap);
            call.modem.Fragment(fragment);
            call.modem.OnInPieces("\x03" + kBlockChecksum, row.replies);
            call.modem.On("\x04", {"\x1B\x84\x8D"});
            EXPECT_EQ(call.Send(), row.code);
            EXPECT_EQ(call.dialup.ProviderResponse(), row.response);
            EXPECT_TRUE(call.modem.written.ends_with("\x04\r+++ATH0\r"));
            EXPECT_EQ(call.Spent(), kOpening + kIdentification + 500 + row.time + kBeforeEnd);
        }
    }
}

TEST(Dialup, WordsOfAPageThatComeBackAreNoAnswer) {
    Call call(kTap);
    call.message.Data = u"INVALID PAGER\rMessage submitted";
    call.modem.Fragment(1);
    call.modem.Otherwise("");
    call.modem.On("ATE0", {"\r\nOK\r\n"});
    call.modem.On("Message submitted",
                  {OctetText("02 '0612345678' 0D 'INVALID PAGER' 0D 'Message submitted' 0D 03")});
    EXPECT_EQ(call.Send(), 33505);
}

TEST(Dialup, TheEndMayGoUnanswered) {
    Call call(kTap);
    call.modem.On("\x04", {""});
    call.modem.On("+++ATH0", {""});
    EXPECT_EQ(call.Send(), 0);
    EXPECT_EQ(call.Spent(), kOpening + kIdentification + kAroundFrame + kBeforeTapReply + kBeforeEnd +
                                3 * 2000 + 2 * 2000 + kHangUp);
}

TEST(Dialup, ADroppedLineAnswersHangingUpOverTapOnly) {
    for (const auto& [type, waited] : {std::pair(kUcp, kHangUp), std::pair(kTap, std::uint64_t{0})}) {
        Call call(type);
        call.modem.On("+++ATH0", {"\r\nNO CARRIER\r\n"});
        call.modem.On(kFrame + "+++ATH0", {"\r\nNO CARRIER\r\n"});
        call.Replies(0, type == kUcp ? kAck : "");
        EXPECT_EQ(call.Send(), 0);
        const std::uint64_t tap = kIdentification + kBeforeTapReply + kBeforeEnd;
        EXPECT_EQ(call.Spent(), kOpening + kAroundFrame + waited + (type == kTap ? tap : 0));
    }
}

// --- logs and provider files

std::string LogOf(Call& call, const std::string& password = "", bool masks = false) {
    const TemporaryFolder folder;
    call.dialup.SetLogFile(folder.File("log"));
    call.dialup.settings.providerPassword = password;
    if (masks) call.dialup.SetAdvancedSettings("MaskPasswords=1");
    call.dialup.SetDialString("0201234567");
    (void)call.Send();
    std::string lines;
    std::istringstream text(TemporaryFolder::Read(folder.File("log")));
    constexpr std::size_t kTime = 12;  // "[22:13:20]  "
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with('[')) line.erase(0, kTime);
        if (!line.empty()) lines += line + "\n";
    }
    return lines;
}

const std::string kLogOfDialling =
    "Provider Dial String : 0201234567 \n"
    "OPEN DEVICE   [Velqar Build 5.3.10.1123 (x64)], device=[COM3], baudrate=[115200], result=[Success]\n"
    "WRITE STRING, string=[ATE0]\n"
    "READ STRING,  string=[OK]\n"
    "WRITE STRING, string=[ATD0201234567]\n"
    "READ STRING,  string=[CONNECT 9600]\n";
const std::string kLogOfHangingUp =
    "WRITE Hangup-command\n"
    "WRITE BYTES, #bytes=[8]\n"
    "WAIT FOR response\n"
    "READ BYTES, string=[OK]\n"
    "CLOSE DEVICE\n";

TEST(DialupLog, OfUcp) {
    const std::string begin = kLogOfDialling +
                              "WRITE BYTES, #bytes=[42]\n"
                              "WAITING FOR response message from ucp provider\n";
    struct Row {
        const char* reply;
        const char* line;
    };
    for (const Row& row : {
             Row{"02 '////A/5/' 03", "READ BYTES, positive ACK received, string=[A/5]\n"},
             Row{"02 '////N/5/' 03", "READ BYTES, NACK received, string=[N/5]\n"},
             Row{"02 03", "READ BYTES, Syntax error received, string=[]\n"},
         }) {
        Call call;
        call.Replies(0, OctetText(row.reply));
        EXPECT_EQ(LogOf(call), begin + row.line + kLogOfHangingUp);
    }
    Call silent;
    EXPECT_THAT(LogOf(silent), testing::HasSubstr("READ BYTES failed, no response received\nWRITE Hangup"));
}

TEST(DialupLog, OfTap) {
    const auto log = [](Call& call, const std::string& verdict) {
        EXPECT_EQ(LogOf(call), kLogOfDialling +
                                   "WRITE Initial Sync Request\n"
                                   "WRITE BYTES, #bytes=[1]\n"
                                   "WAIT FOR Identification Sync ACK\n"
                                   "READ BYTES, Identification Sync ACK received\n"
                                   "WRITE Identification Request\n"
                                   "WRITE BYTES, #bytes=[5]\n"
                                   "WAIT FOR Identification ACK\n"
                                   "READ BYTES, Identification ACK received\n"
                                   "WRITE BYTES, #bytes=[20]\n"
                                   "WAIT FOR Transmission ACK\n" +
                                   verdict +
                                   "WRITE End-Of-Transmission Request\n"
                                   "WRITE BYTES, #bytes=[2]\n"
                                   "WAIT FOR End-Of-Transmission ACK\n"
                                   "READ BYTES, End-Of-Transmission ACK received\n" +
                                   kLogOfHangingUp);
    };
    struct Row {
        const char* reply;
        const char* lines;
    };
    for (const Row& row : {
             Row{"ok\r\x06\r", "READ BYTES, string=[ok]\nREAD BYTES, Transmission ACK received\n"},
             Row{"INVALID PAGER\r",
                 "READ BYTES, string=[INVALID PAGER]\nInvalid Pager number reported by provider\n"},
             Row{"not allowed\r",
                 "READ BYTES, string=[not allowed]\nPager number not allowed or blocked by provider\n"},
             Row{"\x15\r", "READ BYTES, string=[]\nUnknown error , NACK received\n"},
         }) {
        Call call(kTap);
        call.modem.On("\x03" + kBlockChecksum, {row.reply});
        log(call, row.lines);
    }
    Call silent(kTap);
    silent.modem.On("", {""});
    EXPECT_THAT(LogOf(silent),
                testing::HasSubstr("TIMEOUT, Identification ACK not received\nCLOSE DEVICE\n"));
    Call mute(kTap);
    mute.modem.On("\x03" + kBlockChecksum, {""});
    mute.modem.On("\x04", {""});
    const std::string lines = LogOf(mute);
    EXPECT_THAT(lines, testing::HasSubstr("READ BYTES, Transmission ACK NOT received\nWRITE End-Of-"));
    EXPECT_THAT(lines, testing::HasSubstr("READ BYTES, End-Of-Transmission ACK NOT received\nWRITE Hangup"));
}

TEST(DialupLog, HidesThePassword) {
    for (const bool masks : {false, true}) {
        Call call(kTap);
        call.modem.On("\x1BPG1secret", {"\x1B[p\r"});
        call.modem.On("\x03" + kBlockChecksum, {"Hello secret\r\x06\r"});
        const std::string log = LogOf(call, "secret", masks);
        EXPECT_EQ(log.find("secret") == std::string::npos, masks);
        EXPECT_EQ(log.find("string=[Hello ****]") != std::string::npos, masks);
    }
}

TEST(Dialup, KeepsProvidersInFiles) {
    const TemporaryFolder folder;
    VirtualClock clock;
    ScriptedModem modem(clock);
    CDialupProtocol dialup(modem, clock);
    dialup.SetLogFile(folder.File("log"));
    TemporaryFolder::Write(folder.File("in"),
                           "[Provider]\nProviderDialMode=1\nProviderDialString=020\n"
                           "ProviderInitString=ATM0;ATL0\nProviderPassword=pw\nProviderSettingsID=2\n"
                           "ProviderSpeed=300\nProviderTypeID=3\n");
    EXPECT_EQ(dialup.LoadConfig(folder.File("in")), 0);
    EXPECT_EQ(dialup.settings.dialMode, sms::asDIALMODE_PULSE);
    EXPECT_EQ(dialup.settings.dialString, "020");
    EXPECT_EQ(dialup.settings.providerInitString, "ATM0;ATL0");
    EXPECT_EQ(dialup.settings.providerPassword, "pw");
    EXPECT_EQ(dialup.settings.providerSettings, sms::asDEVICESETTINGS_7E1);
    EXPECT_EQ(dialup.settings.providerSpeed, 300);
    EXPECT_EQ(dialup.settings.providerType, sms::asPROVIDERTYPE_TAP_NOEOT);
    EXPECT_EQ(dialup.SaveConfig(folder.File("out")), 0);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("out")), TemporaryFolder::Read(folder.File("in")));
    EXPECT_EQ(dialup.SaveConfig(""), 33052);
    EXPECT_EQ(dialup.LoadConfig(folder.File("none")), 33050);
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    EXPECT_THAT(log, testing::HasSubstr("Provider Dial String : 020 \n"));
    EXPECT_THAT(log, testing::HasSubstr("Saving SMSC provider settings to file [" + folder.File("out") +
                                        "], result: SUCCESS\n"));
    EXPECT_THAT(log,
                testing::HasSubstr("Saving SMSC provider settings to file [], result: ERROR #33052 (Failed "
                                   "to save provider config file, failed to write file)\n"));
    dialup.Clear();
    EXPECT_EQ(dialup.settings.dialString, "");
    EXPECT_EQ(dialup.LogFile(), "");
}

}  // namespace
