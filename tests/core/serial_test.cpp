// A serial line against a scripted modem in virtual time: opening, texts, lines, octets, and waits for
// answers.
#include "foundation/Text.h"
#include "foundation/serial/HearUntil.h"
#include "foundation/serial/VrmComIO.h"
#include "sms/DeviceOptions.h"
#include "support/ScriptedModem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

class Serial : public testing::Test {
  protected:
    void Open(SerialSettings settings = {.device = "COM3"}) { ASSERT_EQ(port.Open(std::move(settings)), 0); }

    VirtualClock clock;
    ScriptedModem modem{clock};
    CVrmComIO port{modem, clock};
};

TEST_F(Serial, ChoosesPortOrTelephonyByName) {
    struct Row {
        const char* device;
        std::uint32_t speed;
        bool telephony;
        std::uint32_t usedSpeed;
        const char* opened;
    };
    for (const Row& row :
         {Row{"COM3", 0, false, 115200, "COM3"}, Row{"com12", 9600, false, 9600, "com12"},
          Row{"\\\\.\\COM251", 0, false, 115200, "COM251"}, Row{" COM3 ", 0, false, 115200, "COM3"},
          Row{"COM251:", 0, false, 115200, "COM251"}, Row{"Standard Modem", 0, true, 0, "Standard Modem"},
          Row{" A modem: COM3", 0, true, 0, " A modem: COM3"}}) {
        Open({.device = row.device, .speed = row.speed});
        EXPECT_EQ(modem.viaTelephony, row.telephony);
        EXPECT_EQ(modem.settings.speed, row.usedSpeed);
        EXPECT_EQ(modem.settings.device, row.opened);
        EXPECT_EQ(port.Open({.device = "COM3"}), 30103);
        EXPECT_TRUE(modem.dtr && modem.rts) << row.device;
        port.Close();
        EXPECT_FALSE(modem.dtr || modem.rts) << row.device;
    }
    EXPECT_EQ(port.Open({.device = "COM3", .speed = 1}), 30113);
    EXPECT_EQ(port.Open({.device = ""}), 30201);
    modem.openResult = ResultCode(30104);
    EXPECT_EQ(port.Open({.device = "COM3"}), 30104);
    EXPECT_FALSE(port.IsOpen());
}

TEST_F(Serial, AnUnknownOpenErrorIsLogged) {
    const TemporaryFolder folder;
    port.SetLogFile(folder.File("log"));
    modem.openResult = ResultCode(30104);
    for (const auto& [error, logged] : {std::pair{2U, false}, {5U, false}, {31U, true}}) {
        std::remove(folder.File("log").c_str());
        modem.systemError = error;
        (void)port.Open({.device = "COM3"});
        const std::string log = TemporaryFolder::Read(folder.File("log"));
        EXPECT_EQ(
            log.find("Unknown error occured while opening serial port  : [0x0000001F]") != std::string::npos,
            logged);
        EXPECT_NE(
            log.find("OPEN DEVICE   [Velqar Build 5.3.10.1123 (x64)], device=[COM3], baudrate=[115200], "
                     "result=[Generic open port error]\n"),
            std::string::npos);
    }
}

TEST_F(Serial, WritesTextsWithTheirTerminator) {
    port.WriteString("AT");  // not open: nothing happens
    EXPECT_EQ(port.WriteBytes("x"), 30114);
    std::string line;
    EXPECT_EQ(port.ReadString(line, 10, 100), 30114);
    EXPECT_EQ(port.ReadBytes(line, 10, 100), 30114);
    Open();
    port.WriteString("AT");
    port.WriteString("0001\x1a");
    port.WriteString("");
    EXPECT_EQ(modem.written, "AT\r0001\x1a");
    modem.written.clear();
    port.WriteString(std::string(5000, 'x'));
    EXPECT_EQ(modem.written.size(), 4097U);
    port.Close();
    modem.written.clear();
    Open({.device = "COM3", .writeDelay = 50, .characterDelay = 20});
    const auto before = clock.Slept();
    port.WriteString("ATZ");
    EXPECT_EQ(modem.written, "ATZ\r");
    EXPECT_EQ(clock.Slept() - before, 50U + 4 * 20);
}

TEST_F(Serial, ASlowWriteToADeadLineEnds) {
    Open({.device = "COM3", .characterDelay = 20});
    modem.dead = true;
    const auto before = clock.Slept();
    port.WriteString("ATZ");
    EXPECT_EQ(clock.Slept() - before, 5000U + 4 * 20);
}

TEST_F(Serial, WhatALineTakesDependsOnItsSpeed) {
    struct Row {
        std::uint32_t speed, timeout;
        std::uint64_t waited;
        std::uint32_t left;
    };
    for (const Row& row : {Row{115200, 5000, 5000 + 10, 0}, Row{300, 20'000, 5000 + 3667, 15'000},
                           Row{9600, Timer::kForever, 5000 + 115, Timer::kForever}}) {
        Open({.device = "COM3", .speed = row.speed});
        modem.blockedFor = 100'000;
        const auto before = clock.Slept();
        EXPECT_EQ(port.WriteString(std::string(99, 'x'), row.timeout), row.left);
        EXPECT_EQ(clock.Slept() - before, row.waited);
        port.Close();
    }
}

TEST_F(Serial, ReadsLinesHoweverTheyArrive) {
    struct Row {
        const char* name;
        std::string octets;
        std::size_t maximum;
        std::string line;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const std::size_t fragment : {0, 1, 3}) {
        modem.Fragment(fragment);
        for (const Row& row : {
                 Row{"empty lines are skipped", "\r\nOK\r\n", 100, "OK", 0, 0},
                 Row{"blanks are trimmed", "\r\n  a b \t\r", 100, "a b", 0, 0},
                 Row{"cut by the time-out", "half", 100, "half", 0, 1000},
                 Row{"cut by the maximum", "abcdef\r", 4, "abcd", 0, 0},
                 Row{"line feed", "\nOK\nmore", 100, "OK", 0, 0},
                 Row{"nothing", "", 100, "", 30115, 1000},
                 Row{"only line ends", "\r\n\r\n\r\n", 100, "", 30115, 1000},
                 Row{"embedded zero", std::string("a\0b\r", 4), 100, std::string("a\0b", 3), 0, 0},
             }) {
            Open();
            modem.Give(row.octets);
            std::string line;
            const auto before = clock.Slept();
            EXPECT_EQ(port.ReadString(line, row.maximum, 1000), row.code) << row.name;
            EXPECT_EQ(line, row.line) << row.name;
            EXPECT_EQ(clock.Slept() - before, row.waited) << row.name;
            port.Close();
        }
    }
}

TEST_F(Serial, ReadsOctetsUntilCountOrTimeout) {
    Open();
    modem.Give("abcdef");
    std::string octets;
    EXPECT_EQ(port.ReadBytes(octets, 4, 100), 0);
    EXPECT_EQ(octets, "abcd");
    EXPECT_EQ(port.ReadBytes(octets, 4, 100), 0);
    EXPECT_EQ(octets, "ef");
    EXPECT_EQ(port.ReadBytes(octets, 4, 100), 30115);
}

TEST_F(Serial, PurgingForgetsWhatWasReadAhead) {
    Open();
    modem.Give("first\rsecond\r");
    std::string line;
    ASSERT_EQ(port.ReadString(line, 100, 100), 0);
    port.Purge();
    EXPECT_EQ(port.ReadString(line, 100, 100), 30115);
}

TEST(DeviceOptions, FlowControlSetsTheLineControls) {
    SerialSettings settings;
    ApplyFlowControl(settings, 0);
    EXPECT_EQ(settings.ctsFlow + settings.rtsControl + settings.xonXoff + settings.dsrFlow, 0U);
    ApplyFlowControl(settings, 1);
    EXPECT_EQ(settings.ctsFlow, 2U);
    EXPECT_EQ(settings.rtsControl, 2U);
    ApplyFlowControl(settings, 2);
    EXPECT_EQ(settings.ctsFlow, 1U);
    EXPECT_EQ(settings.xonXoff, 1U);
}

// --- waits for answers that are no lines

constexpr char kEtx = 3;

Heard FrameOrAnything(std::string_view heard) {
    return heard.ends_with(kEtx) ? Heard::kWhole : AnyOctets(heard);
}

TEST(HearUntil, TheAnswerIsThereOrTheTriesAreOver) {
    struct Row {
        const char* name;
        HearUntil wait;
        std::vector<std::pair<std::uint32_t, std::string>> arrivals;
        Heard outcome;
        std::string heard;
        std::uint64_t waited;
        std::size_t reads;
    };
    const HearUntil text{.tries = 10, .read = 1000, .before = 50, .pause = 50, .text = "ID="};
    const HearUntil frame{.tries = 7, .read = 4000, .accept = FrameOrAnything};
    HearUntil parity = text;
    parity.sevenBits = true;
    HearUntil echoed = frame;
    echoed.echo = "\x02me\x03";
    const HearUntil spaced{.tries = 4, .read = 2000, .before = 3000, .pause = 1000, .text = "\x06\r"};
    for (Row& row : std::vector<Row>{
             {"at once", text, {{0, "ID="}}, Heard::kWhole, "ID=", 50, 1},
             {"what comes with it is heard too", text, {{0, "xID=y"}}, Heard::kWhole, "xID=y", 50, 1},
             {"ends the read", text, {{500, "noise"}, {800, "ID="}}, Heard::kWhole, "noiseID=", 800, 1},
             {"over two reads", text, {{500, "I"}, {1500, "D="}}, Heard::kWhole, "ID=", 1500, 2},
             {"in the last read", text, {{10'490, "ID="}}, Heard::kWhole, "ID=", 10'490, 10},
             {"too late", text, {{10'510, "ID="}}, Heard::kNotYet, "", 10'500, 10},
             {"a whole frame", frame, {{100, "\x02x\x03"}}, Heard::kWhole, "\x02x\x03", 100, 1},
             {"half a frame counts when the read is over",
              frame,
              {{5000, "\x02x"}},
              Heard::kEnough,
              "\x02x",
              8000,
              2},
             {"parity is not heard", parity, {{0, "\xC9\x44\xBD"}}, Heard::kWhole, "ID=", 50, 1},
             {"nor an echo",
              echoed,
              {{100, "x\x02m"}, {200, "e\x03"}, {900, "\x02y\x03"}},
              Heard::kWhole,
              "x\x02y\x03",
              900,
              1},
             {"an echo is no answer", echoed, {{5000, "\x02me\x03"}}, Heard::kNotYet, "", 28'000, 7},
             {"silence", frame, {}, Heard::kNotYet, "", 28'000, 7},
             {"silence with pauses", spaced, {}, Heard::kNotYet, "", 3000 + 4 * 2000 + 3 * 1000, 4},
             {"in a pause", spaced, {{5500, "\x06\r"}}, Heard::kWhole, "\x06\r", 6000, 2},
             {"the wrong answer", spaced, {{0, "\x15\r"}}, Heard::kNotYet, "\x15\r", 14'000, 4},
         }) {
        const TemporaryFolder folder;
        VirtualClock time;
        ScriptedModem peer(time);
        CVrmComIO line(peer, time);
        ASSERT_EQ(line.Open({.device = "COM3"}), 0);
        line.SetLogFile(folder.File("log"));
        for (const auto& [when, octets] : row.arrivals) peer.GiveAfter(when, octets);
        row.wait.line = "WAIT FOR IT\n";
        const Hearing hearing = Hear(line, row.wait);
        EXPECT_EQ(time.Slept() - 500, row.waited) << row.name;
        EXPECT_EQ(hearing.outcome, row.outcome) << row.name;
        EXPECT_EQ(hearing.heard, row.heard) << row.name;
        EXPECT_EQ(Split(TemporaryFolder::Read(folder.File("log")), "WAIT FOR IT\n").size() - 1, row.reads)
            << row.name;
    }
}

TEST_F(Serial, EachReadOfAWaitIsHandedOnWithTheLineItGoesOnWith) {
    Open();
    modem.GiveAfter(500, "one\r");
    modem.GiveAfter(2500, "tw");
    modem.GiveAfter(3500, "o\r");
    modem.GiveAfter(3700, "done");
    std::vector<std::string> reads;
    const HearUntil wait{.tries = 5, .read = 1000, .text = "done"};
    EXPECT_EQ(Hear(port, wait, [&](std::string_view octets) { reads.emplace_back(octets); }).heard,
              "one\rtwo\rdone");
    EXPECT_EQ(reads, (std::vector<std::string>{"one\r", "tw", "two\rdone"}));
}

TEST_F(Serial, AWaitEndsOnAnyLine) {
    const HearUntil wait{.tries = 2, .read = 1000, .pause = 300, .text = "never"};
    EXPECT_EQ(Hear(port, wait).outcome, Heard::kNotYet);
    EXPECT_EQ(clock.Slept(), 300U);  // not open
    Open();
    modem.endless = true;
    modem.flood = "noise";
    EXPECT_EQ(Hear(port, wait).heard.size(), 2U * 4096);
    modem.dead = true;
    const auto before = clock.Slept();
    EXPECT_EQ(Hear(port, wait).outcome, Heard::kNotYet);
    EXPECT_EQ(clock.Slept() - before, 2300U);
}

}  // namespace
