// Replies of a modem: what their last line means, and the three ways to read them.
#include "foundation/serial/VrmComIO.h"
#include "support/ScriptedModem.h"

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
             Row{"+X: 1 OK", "+X:", AtStatus::kOk, 0, true, true},
             Row{"CONNECT 9600", "", AtStatus::kConnect, 0, true, false},
             Row{"ERROR", "", AtStatus::kError, 30352, true, true},
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

class AtDialogue : public testing::Test {
  protected:
    AtDialogue() { EXPECT_EQ(port.Open({.device = "COM3"}), 0); }
    std::uint64_t Passed() { return clock.Slept() - std::exchange(mark_, clock.Slept()); }

    VirtualClock clock;
    ScriptedModem modem{clock};
    CVrmComIO port{modem, clock};

  private:
    std::uint64_t mark_ = 500;  // the settling after the opening
};

TEST_F(AtDialogue, ExchangesKeepTheLastLine) {
    struct Row {
        std::vector<std::pair<std::uint32_t, const char*>> arrivals;
        const char* expected;
        const char* reply;
        std::int32_t code;
        std::uint64_t waited;
    };
    modem.Otherwise("");
    for (const Row& row : {
             Row{{{0, "\r\nOK\r\n"}}, "", "OK", 0, 0},
             Row{{{0, "AT\r\r\nOK\r\n"}}, "", "OK", 0, 0},
             Row{{{0, "\r\nRING\r\n"}, {2500, "\r\nOK\r\n"}}, "", "OK", 0, 2500},
             Row{{{0, "\r\n+X: 1\r\n\r\nOK\r\n"}}, "+X:", "+X: 1", 0, 0},
             Row{{{0, "\r\n+X: 1\r\n"}}, "+X:", "+X: 1", 0, 1000},  // waits for the line that closes it
             Row{{{0, "\r\n> "}}, ">", ">", 0, 0},                  // behind a prompt nothing is waited for
             Row{{{100, "\r\n+X:"}, {1600, " 1\r\n\r\nOK\r\n"}}, "+X:", "+X:1", 0, 1600},
             Row{{{0, "\r\n+X: 1"}}, "+X:", "+X: 1", 30351, 3000},  // half a line is no answer
             Row{{{0, "\r\nwhat\r\n"}}, "", "what", 30351, 3000},
             Row{{}, "", "", 30350, 3000},
         }) {
        for (const auto& [when, octets] : row.arrivals) modem.GiveAfter(when, octets);
        const AtExchange exchange = port.Exchange("AT", 3000, row.expected);
        EXPECT_EQ(exchange.reply, row.reply);
        EXPECT_EQ(exchange.outcome.code, row.code) << row.reply;
        EXPECT_EQ(Passed(), row.waited) << row.reply;
        port.Purge();
    }
}

TEST_F(AtDialogue, AFloodCostsNoMoreThanTheTimeout) {
    modem.Otherwise("");
    modem.endless = true;
    for (const char* flood : {"\r\n\r\n", "RING\r\n", "no end "}) {
        modem.flood = flood;
        (void)port.Exchange("AT", 5000);
        EXPECT_EQ(Passed(), 5000U) << flood;
    }
}

TEST_F(AtDialogue, CollectsAllLines) {
    struct Row {
        const char* reply;
        const char* lines;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const Row& row : {
             Row{"\r\nMaker\r\nModel\r\n\r\nOK\r\n", "Maker\r\nModel\r\nOK", 0, 0},
             Row{"\r\nBUSY\r\nNO CARRIER\r\nok\r\n", "BUSY\r\nNO CARRIER\r\nok", 0, 0},
             Row{"\r\n+CME ERROR: 11\r\n", "+CME ERROR: 11", 33141, 0},
             Row{"\r\nBUSY\r\n", "BUSY", 30356, 2000},
             Row{"\r\nhm\r\n", "hm", 30351, 2000},
             Row{"", "", 30350, 2000},
         }) {
        modem.On("ATI", {row.reply});
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
        const char* reply;
        const char* entries;
        std::int32_t code;
        std::uint64_t waited;
    };
    for (const Row& row : {
             Row{"\r\nOK\r\n", "", 0, 0},
             Row{"\r\n+CMGL: 3,1,,20\r\n00AB\r\n+cmgl: 14,1\r\n0c\r\n\r\nOK\r\n", "3=00AB 14=0c ", 0, 0},
             Row{"\r\nRING\r\n+CMGL: 4,1\r\nBUSY\r\n00\r\n11\r\nOK\r\n", "4=00 ", 0, 0},
             Row{"\r\nAB\r\n+CMGL: 5\r\nA\r\n+CMGL: 6\r\n22\r\nOK\r\n", "6=22 ", 0, 0},
             Row{"\r\n+CMGL: 3,1\r\n00\r\n\r\n+CMS ERROR: 310\r\n", "3=00 ", 33140, 0},
             Row{"\r\nERROR\r\n", "", 30352, 0},
             Row{"\r\n+CMGL: 3,1\r\n00\r\n", "3=00 ", 30350, 5000},
             Row{"\r\n+CMGL: 3,1\r\n00\r\n+CMGL: 4", "3=00 ", 30350, 10'000},
             Row{"", "", 30350, 5000},
         }) {
        modem.On("AT+CMGL=1", {row.reply});
        std::string entries;
        const ResultCode code =
            port.Listing("AT+CMGL=1", "+CMGL:", 5000, [&](std::int32_t number, const std::string& hexText) {
                entries += std::to_string(number) + "=" + hexText + " ";
            });
        EXPECT_EQ(code, row.code) << row.reply;
        EXPECT_EQ(entries, row.entries);
        EXPECT_EQ(Passed(), row.waited) << row.reply;
    }
    modem.On("AT+CMGL=1", {""});
    modem.endless = true;
    for (const auto& [flood, waited] :
         {std::pair{"RING\r\n", 5000U}, {"\r\n", 5000U}, {"+CMGL: 1\r\n", 10'000U}}) {
        modem.flood = flood;  // a ms each: 10000 entries end a listing
        EXPECT_EQ(port.Listing("AT+CMGL=1", "+CMGL:", 5000, [](auto, auto&) {}), 30350) << flood;
        EXPECT_EQ(Passed(), waited) << flood;
    }
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
