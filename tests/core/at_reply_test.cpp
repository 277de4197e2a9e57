// Replies of a modem: what their last line means, and the three ways to read them.
#include "foundation/serial/VrmComIO.h"
#include "support/ScriptedModem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(AtReply, LinesHaveTheirMeaning) {
    struct Row {
        const char* line;
        const char* expected;
        AtStatus status;
        std::int32_t code;
        bool ends;
        bool endsLines;
    };
    for (const Row& row : {
             Row{"OK", "", AtStatus::kOk, 0, true, true},
             Row{"ok", "", AtStatus::kOk, 0, true, true},
             Row{"+X: 1 OK", "+X:", AtStatus::kOk, 0, true, false},
             Row{"CONNECT 9600", "", AtStatus::kConnect, 0, true, false},
             Row{"ERROR", "", AtStatus::kError, 30352, true, true},
             Row{"Brooke", "", AtStatus::kOk, 0, true, false},
             Row{"COMMAND ERROR", "", AtStatus::kError, 30352, true, true},
             Row{"+CMS ERROR: xyz", "", AtStatus::kError, 30352, true, true},
             Row{"NO DIALTONE", "", AtStatus::kNoDialtone, 30353, true, false},
             Row{"NO CARRIER", "", AtStatus::kNoCarrier, 30354, true, false},
             Row{"NO ANSWER", "", AtStatus::kNoAnswer, 30355, true, false},
             Row{"BUSY", "", AtStatus::kBusy, 30356, true, false},
             Row{"+x: 1", "+X:", AtStatus::kExpected, 0, true, false},
             Row{"> ", ">", AtStatus::kExpected, 0, true, false},
             Row{"", "+X:", AtStatus::kNone, 30350, false, false},
             Row{"what", "", AtStatus::kUnexpected, 30351, false, false},
         }) {
        EXPECT_EQ(ClassifyReply(row.line, row.expected).status, row.status) << row.line;
        EXPECT_EQ(ClassifyReply(row.line, row.expected).code, row.code) << row.line;
        EXPECT_EQ(EndsReply(row.line, row.expected), row.ends) << row.line;
        EXPECT_EQ(EndsLines(row.line), row.endsLines) << row.line;
    }
}

TEST(AtReply, ErrorNumbersHaveTheirCodes) {
    struct Row {
        const char* family;
        std::int32_t code;
        std::vector<int> numbers;
    };
    for (const Row& row : {
             Row{"+CMS ERROR", 34031, {27, 28}},
             Row{"+CMS ERROR", 33160, {38, 512, 513, 515, 535}},
             Row{"+CMS ERROR", 33140, {310}},
             Row{"+CMS ERROR", 33141, {311}},
             Row{"+CMS ERROR", 33150, {321}},
             Row{"+CMS ERROR", 33170, {330}},
             Row{"+CMS ERROR", 30352, {0, 10, 11, 14, 26, 29, 500, 514}},
             Row{"+CME ERROR", 33140, {10}},
             Row{"+CME ERROR", 33141, {11}},
             Row{"+CME ERROR", 33160, {14}},
             Row{"+CME ERROR", 30352, {0, 16, 27, 28, 38, 310, 330, 512}},
         }) {
        for (const int number : row.numbers) {
            for (const char* separator : {": ", ":", " "}) {
                const std::string line = row.family + (separator + std::to_string(number));
                EXPECT_EQ(ClassifyReply(line, {}).code, row.code) << line;
            }
        }
    }
}

TEST(AtReply, LinesThatAModemSendsByItselfAreNoAnswers) {
    struct Row {
        const char* line;
        const char* expected;
        bool taken;
    };
    for (const Row& row : {
             Row{"RING", "", true},
             Row{"^RSSI: 20", ">", true},
             Row{"+cmti: \"SM\",3", "+X:", true},
             Row{"+CLIP: \"+31612345678\",145,\">\"", ">", true},
             Row{"+CREG: 0,1", "+CPIN:", true},
             Row{"+CREG: 0,1", "+CREG:", false},
             Row{"+cpin: READY", "+CPIN:", false},
             Row{"+X: 1", "", false},
             Row{"+CMGL: 1", "", false},
             Row{"OK", "", false},
             Row{"", "", false},
         }) {
        EXPECT_EQ(AtUnsolicited().Takes(row.line, row.expected), row.taken) << row.line << row.expected;
    }
    AtUnsolicited unsolicited;
    for (const auto& [line, taken] : {std::pair{"+CMT: ,24", true},
                                      {"OK", true},  // its text
                                      {"OK", false}})
        EXPECT_EQ(unsolicited.Takes(line), taken) << line;
}

using Pieces = ScriptedModem::Pieces;

class AtDialogue : public testing::Test {
  protected:
    AtDialogue() { EXPECT_EQ(port.Open({.device = "COM3"}), 0); }
    std::uint64_t Passed() { return clock.Slept() - std::exchange(mark_, clock.Slept()); }
    // A line on which nothing was said before.
    void Afresh() {
        port.Close();
        EXPECT_EQ(port.Open({.device = "COM3"}), 0);
        (void)Passed();
    }

    VirtualClock clock;
    ScriptedModem modem{clock};
    CVrmComIO port{modem, clock};

  private:
    std::uint64_t mark_ = 500;  // the settling after the opening
};

TEST_F(AtDialogue, ExchangesKeepTheLastLine) {
    struct Row {
        Pieces pieces;
        const char* expected;
        const char* reply;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const Row& row : {
             Row{{{0, "\r\nOK\r\n"}}, "", "OK", 0, 0},
             Row{{{0, "AT\r\r\nOK\r\n"}}, "", "OK", 0, 0},
             Row{{{0, "\r\nwhat\r\n"}, {2500, "\r\nOK\r\n"}}, "", "OK", 0, 2500},
             Row{{{0, "\r\n+X: 1\r\n\r\nOK\r\n"}}, "+X:", "+X: 1", 0, 0},
             Row{{{0, "\r\n+X: 1\r\n"}}, "+X:", "+X: 1", 0, 1000},  // waits for the line that closes it
             Row{{{0, "\r\n> "}}, ">", ">", 0, 0},                  // behind a prompt nothing is waited for
             Row{{{0, "\r\nwhat\r\n"}}, "", "what", 30351, 3000},
             Row{{}, "", "", 30350, 3000},
             // line feeds, carriage returns
             Row{{{0, "\nOK\n"}}, "", "OK", 0, 0},
             Row{{{0, "\n+X: 1\n\nOK\n"}}, "+X:", "+X: 1", 0, 0},
             Row{{{0, "\r+X: 1\r\rOK\r"}}, "+X:", "+X: 1", 0, 0},
             // half lines: taken after a second of silence when they say enough
             Row{{{0, "\r\nOK"}}, "", "OK", 0, 1000},
             Row{{{0, "\r\nO"}, {500, "K"}}, "", "OK", 0, 1500},
             Row{{{200, "\r\n+CMS ERROR: 310"}}, "+X:", "+CMS ERROR: 310", 33140, 1200},
             Row{{{0, "\r\n+X: 1"}}, "+X:", "+X: 1", 0, 2000},
             Row{{{0, "\r\n+X: 1"}, {1500, "7\r\n\r\nOK\r\n"}}, "+X:", "+X: 17", 0, 1500},
             Row{{{0, "\r\n+X: SIM"}, {900, " PIN\r\n\r\nOK\r\n"}}, "+X:", "+X: SIM PIN", 0, 900},
             Row{{{0, "\r\nBroo"}, {2000, "ke"}}, "", "Brooke", 30351, 3000},
             Row{{{0, "\r\nwha"}, {2000, "t\r\n\r\nOK\r\n"}}, "", "OK", 0, 2000},
             // lines that the modem sends by itself
             Row{{{0, "\r\nRING\r\n"}}, "", "", 30350, 3000},
             Row{{{0, "\r\n+CLIP: \"Brooke\"\r\n"}, {9, "\r\nERROR\r\n"}}, "", "ERROR", 30352, 9},
             Row{{{0, "\r\n+CMT: ,24\r\nOK\r\n"}, {9, "\r\nERROR\r\n"}}, "", "ERROR", 30352, 9},
             Row{{{0, "\r\n+CREG: 0,1\r\n\r\nOK\r\n"}}, "+CREG:", "+CREG: 0,1", 0, 0},
             Row{{{0, "\r\n^RSSI"}}, "", "^RSSI", 30350, 3000},
         }) {
        Afresh();
        modem.OnInPieces("AT", row.pieces);
        const AtExchange exchange = port.Exchange("AT", 3000, row.expected);
        const bool isAnswer = exchange.outcome.code != 30350;
        EXPECT_EQ(exchange.reply, isAnswer ? row.reply : "");
        EXPECT_EQ(exchange.outcome.code, row.code) << row.reply;
        EXPECT_EQ(Passed(), row.waited) << row.reply;
    }
}

TEST_F(AtDialogue, AnEchoIsNoAnswer) {
    for (const char* command : {"AT+CPBS=\"OK\"", "Brooke\x1a"}) {
        const std::string typed = std::string(command).substr(0, std::string(command).find('\x1a'));
        modem.On(typed, {command + std::string("\r\r\nERROR\r\n"), command + std::string("\r")});
        EXPECT_EQ(port.Exchange(command, 2000).outcome.code, 30352);
        EXPECT_EQ(port.Exchange(command, 2000).outcome.code, 30351);
    }
}

// What belongs to one command is no answer to the next.
TEST_F(AtDialogue, EachCommandGetsItsOwnAnswer) {
    struct Row {
        const char* name;
        Pieces first;
        std::uint32_t pause;  // between the two commands
        Pieces second;
        const char* expected;
        const char* reply;
        std::int32_t code;
        std::uint64_t waited;
    };
    const Pieces answer{{0, "\r\n+Y: (0,1)\r\n\r\nOK\r\n"}};
    const Pieces refusal{{1700, "\r\n+CME ERROR: 16\r\n"}};
    for (const Row& row : {
             Row{"a line between",
                 {{0, "\r\n+X: 1\r\n\r\n^RSSI: 20\r\n\r\nRING\r\n\r\nOK\r\n"}},
                 0,
                 answer,
                 "+Y:",
                 "+Y: (0,1)",
                 0,
                 0},
             Row{"OK in the second",
                 {{0, "\r\n+X: 1\r\n"}, {500, "\r\n+CMTI: \"SM\",1\r\n"}, {900, "\r\nOK\r\n"}},
                 0,
                 answer,
                 "+Y:",
                 "+Y: (0,1)",
                 0,
                 900},
             Row{"OK before the command",
                 {{0, "\r\n+X: 1\r\n"}, {1500, "\r\nOK\r\n"}},
                 1000,
                 answer,
                 "+Y:",
                 "+Y: (0,1)",
                 0,
                 2000},
             Row{"OK behind the command",
                 {{0, "\r\n+X: 1\r\n"}, {2500, "\r\nOK\r\n"}},
                 0,
                 {{1700, "\r\n+Y: 2\r\n\r\nOK\r\n"}},
                 "+Y:",
                 "+Y: 2",
                 0,
                 2700},
             Row{"OK behind a command that is refused",
                 {{0, "\r\n+X: 1\r\n"}, {2500, "\r\nOK\r\n"}},
                 1000,
                 refusal,
                 "",
                 "+CME ERROR: 16",
                 30352,
                 3700},
             Row{"never an OK", {{0, "\r\n+X: 1\r\n"}}, 0, {{0, "\r\nOK\r\n"}}, "", "OK", 0, 1000 + 5000},
             Row{"never an OK, an error",
                 {{0, "\r\n+X: 1\r\n"}},
                 0,
                 {{0, "\r\nERROR\r\n"}},
                 "",
                 "ERROR",
                 30352,
                 1000},
             Row{"a line before the command",
                 {{0, "\r\n+X: 1\r\n\r\nOK\r\n"}, {500, "\r\n+Y: 9\r\n\r\nOK\r\n"}},
                 1000,
                 answer,
                 "+Y:",
                 "+Y: (0,1)",
                 0,
                 1000},
         }) {
        Afresh();
        modem.OnInPieces("AT1", row.first);
        modem.OnInPieces("AT2", row.second);
        EXPECT_EQ(port.Exchange("AT1", 5000, "+X:").reply, "+X: 1") << row.name;
        clock.Sleep(row.pause);
        const AtExchange exchange = port.Exchange("AT2", 5000, row.expected);
        EXPECT_EQ(exchange.reply, row.reply) << row.name;
        EXPECT_EQ(exchange.outcome.code, row.code) << row.name;
        EXPECT_EQ(Passed(), row.waited) << row.name;
    }
}

TEST_F(AtDialogue, WhatIsDroppedIsLogged) {
    const TemporaryFolder folder;
    port.SetLogFile(folder.File("log"));
    modem.Give("\r\nAT+CPIN=\"1234\"\r\n\r\n+CMTI: \"SM\",12\r\n");
    EXPECT_EQ(port.Exchange("AT", 5000).reply, "OK");
    EXPECT_NE(TemporaryFolder::Read(folder.File("log"))
                  .find("DROP STRING,  string=[AT+CPIN=\"****\"\r\n\r\n+CMTI: \"SM\",12]\n"),
              std::string::npos);
}

// The data for a prompt are no new command: what the modem says about the command before still counts.
TEST_F(AtDialogue, BehindAPromptNothingIsDropped) {
    EXPECT_EQ(port.Exchange("", 0, ">").outcome.code, 30350);
    modem.On("AT+CMGS=1", {"\r\n> "});
    modem.On("00", {""});
    ASSERT_EQ(port.Exchange("AT+CMGS=1", 5000, ">").outcome.code, 0);
    modem.Give("\r\n+CMS ERROR: 38\r\n");
    EXPECT_EQ(port.Exchange("00\x1a", 5000, "+CMGS:").outcome.code, 33160);
}

TEST_F(AtDialogue, ALineThatTakesNothingCostsTheTimeoutOnce) {
    struct Row {
        std::uint32_t timeout, blocked;
        std::size_t size;
        std::int32_t code;
        std::uint64_t waited;
    };
    modem.Otherwise("\r\nOK\r\n");
    for (const Row& row : {
             Row{1000, 100'000, 9, 30350, 1000 + 1}, Row{5000, 100'000, 1999, 30350, 5000 + 191},
             Row{20'000, 100'000, 1999, 30350, 20'000 + 191},  // the line is given up after 5191 ms
             Row{1000, 400, 9, 0, 400},
             Row{100, 100'000, 9, 30350, 500 + 1},  // less than a driver may take is not waited
         }) {
        Afresh();
        modem.blockedFor = row.blocked;
        EXPECT_EQ(port.Exchange(std::string(row.size, 'A'), row.timeout).outcome.code, row.code);
        EXPECT_EQ(Passed(), row.waited) << row.timeout;
    }
}

TEST_F(AtDialogue, AFloodCostsNoMoreThanTheTimeout) {
    modem.Otherwise("");
    modem.endless = true;
    for (const char* flood : {"\r\n\r\n", "RING\r\n", "no end ", "OK at the end "}) {
        modem.flood = flood;
        (void)port.Exchange("AT", 5000);
        EXPECT_EQ(Passed(), 5000U) << flood;
    }
}

TEST_F(AtDialogue, CollectsAllLines) {
    struct Row {
        Pieces pieces;
        const char* lines;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const Row& row : {
             Row{{{0, "\r\nMaker\r\nModel\r\n\r\nOK\r\n"}}, "Maker\r\nModel\r\nOK", 0, 0},
             Row{{{0, "\r\nBUSY\r\nNO CARRIER\r\nok\r\n"}}, "BUSY\r\nNO CARRIER\r\nok", 0, 0},
             Row{{{0, "\r\n+CME ERROR: 11\r\n"}}, "+CME ERROR: 11", 33141, 0},
             Row{{{0, "\r\nBUSY\r\n"}}, "BUSY", 30356, 2000},
             Row{{{0, "\r\nhm\r\n"}}, "hm", 30351, 2000},
             Row{{}, "", 30350, 2000},
             Row{{{0, "\nBrooke\n"}, {9, "\nMirror\n\nOK\n"}}, "Brooke\r\nMirror\r\nOK", 0, 9},
             Row{{{0, "\r\nBrooke\r\n"}}, "Brooke", 30351, 2000},
             Row{{{0, "\r\nModel\r\nOK"}}, "Model\r\nOK", 0, 1000},
             Row{{{0, "\r\nModel\r\n+CMT: ,9\r\nOK\r\n"}, {9, "OK\r\n"}},
                 "Model\r\n+CMT: ,9\r\nOK\r\nOK",
                 0,
                 9},
         }) {
        Afresh();
        modem.OnInPieces("ATI", row.pieces);
        const AtExchange exchange = port.Collect("ATI", 2000);
        EXPECT_EQ(exchange.reply, row.lines);
        EXPECT_EQ(exchange.outcome.code, row.code) << row.lines;
        EXPECT_EQ(Passed(), row.waited) << row.lines;
    }
    modem.On("ATF", {""});
    modem.endless = true;
    modem.flood = std::string(1000, 'x') + "\r\n";
    const AtExchange flooded = port.Collect("ATF", 100'000);
    EXPECT_EQ(flooded.outcome.code, 30351);
    EXPECT_EQ(flooded.reply.size(), 66U * 1002 - 2);  // the first line that reaches 64 KiB is the last
}

TEST_F(AtDialogue, ListingsGiveTheirEntries) {
    struct Row {
        Pieces pieces;
        const char* entries;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const Row& row : {
             Row{{{0, "\r\nOK\r\n"}}, "", 0, 0},
             Row{{{0, "\r\n+CMGL: 3,1,,20\r\n00AB\r\n+cmgl: 14,1\r\n0c\r\n\r\nOK\r\n"}},
                 "3=00AB 14=0c ",
                 0,
                 0},
             Row{{{0, "\n+CMGL: 3,1,,20\n00AB\n+cmgl: 14,1\n0c\n\nOK\n"}}, "3=00AB 14=0c ", 0, 0},
             Row{{{0, "\r\nRING\r\n+CMGL: 4,1\r\nBUSY\r\n00\r\n11\r\nOK\r\n"}}, "4=00 ", 0, 0},
             Row{{{0, "\r\nAB\r\n+CMGL: 5\r\nA\r\n+CMGL: 6\r\n22\r\nOK\r\n"}}, "5=... 6=22 ", 0, 0},
             Row{{{0, "\r\n+CMGL: 7,1\r\n00X0\r\n\r\nOK\r\n"}}, "7=... ", 0, 0},
             Row{{{0, "\r\n+CMGL: 3,1\r\n00\r\n\r\n+CMS ERROR: 310\r\n"}}, "3=00 ", 33140, 0},
             Row{{{0, "\r\nERROR\r\n"}}, "", 30352, 0},
             Row{{{0, "\r\n+CMGL: 3,1\r\n00\r\n"}}, "3=00 ", 30350, 5000},
             Row{{{0, "\r\n+CMGL: 3,1\r\n00\r\n+CMGL: 4"}}, "3=00 ", 30350, 5000},
             Row{{}, "", 30350, 5000},
             // half lines
             Row{{{0, "\r\n+CMGL: 3,1\r\n00AB"}}, "3=00AB... ", 30350, 5000},
             Row{{{0, "\r\n+CMGL: 3,1\r\n00"}, {4000, "AB\r\nOK\r\n"}}, "3=00AB ", 0, 4000},
             Row{{{0, "\r\n+CMGL: 3,1\r\n00AB\r\n\r\nOK"}}, "3=00AB ", 0, 1000},
             // lines that the modem sends by itself
             Row{{{0, "\r\n+CMGL: 3,1\r\n+CMT: ,9\r\n11\r\n00\r\n\r\nOK\r\n"}}, "3=00 ", 0, 0},
             Row{{{0, "\r\n+CLIP: \"Brooke\"\r\n+CMGL: 3,1\r\n00\r\n\r\nOK\r\n"}}, "3=00 ", 0, 0},
             Row{{{2500, "\r\nRING\r\n"},
                  {5200, "\r\nRING\r\n"},
                  {9000, "\r\n+CMGL: 3,1\r\n00\r\n\r\nOK\r\n"}},
                 "3=00 ",
                 0,
                 9000},
         }) {
        Afresh();
        modem.OnInPieces("AT+CMGL=1", row.pieces);
        std::string entries;
        const ResultCode code = port.Listing("AT+CMGL=1", "+CMGL:", 5000, [&](const AtEntry& entry) {
            entries += std::to_string(entry.number) + "=" + entry.hexText + (entry.whole ? " " : "... ");
        });
        const std::string shown = row.pieces.empty() ? "" : row.pieces.back().second;
        EXPECT_EQ(code, row.code) << shown;
        EXPECT_EQ(entries, row.entries) << shown;
        EXPECT_EQ(Passed(), row.waited) << shown;
    }
    modem.OnInPieces("AT+CMGL=1", {});
    Afresh();
    modem.endless = true;
    for (const auto& [flood, waited] :
         {std::pair{"RING\r\n", 30'000U}, {"\r\n", 5000U}, {"+CMGL: 1\r\n", 10'000U}}) {
        modem.flood = flood;  // a ms each: 10000 entries end a listing
        EXPECT_EQ(port.Listing("AT+CMGL=1", "+CMGL:", 5000, [](auto&) {}), 30350) << flood;
        EXPECT_EQ(Passed(), waited) << flood;
    }
}

// The list before was not ended by its "OK": that one is no end of the next.
TEST_F(AtDialogue, AListingIsNotEndedByTheOneBefore) {
    modem.OnInPieces("AT+CMGL=1", {{0, "\r\n+CMGL: 1,1\r\n00\r\n"}, {6000, "\r\nOK\r\n"}});
    modem.OnInPieces("AT+CMGL=0", {{1500, "\r\n+CMGL: 2,0\r\n00\r\n\r\nOK\r\n"}});
    std::string numbers;
    const auto list = [&](const char* command) {
        return port.Listing(command, "+CMGL:", 5000,
                            [&](const AtEntry& entry) { numbers += std::to_string(entry.number); });
    };
    EXPECT_EQ(list("AT+CMGL=1"), 30350);
    EXPECT_EQ(list("AT+CMGL=0"), 0);
    EXPECT_EQ(numbers, "12");
}

TEST_F(AtDialogue, CommandListsStopAtTheFirstFailure) {
    modem.On("AT2", {"\r\nCONNECT\r\n"});
    modem.On("AT3", {"\r\nERROR\r\n"});
    EXPECT_EQ(port.RunCommandList("AT1;;AT1;"), 0);
    EXPECT_EQ(port.RunCommandList("AT1;AT2;AT1"), 30351);
    EXPECT_EQ(port.RunCommandList("AT3;AT1"), 30352);
    EXPECT_EQ(modem.commands, (std::vector<std::string>{"AT1", "AT1", "AT1", "AT2", "AT3"}));
}

}  // namespace
