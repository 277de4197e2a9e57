// Dialogues as a paging and a mail protocol lead them, over a peer in virtual time.
#include "foundation/net/ReplyDialogue.h"
#include "foundation/net/TransportResult.h"
#include "support/ScriptedPeer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using Peer = ScriptedPeer;
using Pieces = std::vector<std::string>;

// A reply is the first octets that are more than two; its line may come later.
constexpr DialogueManner kPaging{
    .saidFormat = "Said [%s]",
    .heardFormat = "Heard [%s]",
    .logMask = logmask::kLog,
    .unit = DialogueManner::Unit::kOctets,
    .isEnd = [](std::string_view octets) { return octets.size() > 2; },
    .sendTime = 3000,
    .restOfLine = 200,
    .longestLine = 512,
    .largestReply = 1000,
};
// A line with a blank behind its number ends a reply.
constexpr DialogueManner kMail{
    .saidFormat = "COMMAND : %s",
    .heardFormat = "RESPONSE: %s",
    .logMask = logmask::kLog | logmask::kActivity,
    .unit = DialogueManner::Unit::kLine,
    .isEnd = [](std::string_view line) { return line.size() < 4 || line[3] == ' '; },
    .sendTime = 3000,
    .restOfLine = 0,
    .longestLine = 512,
    .largestReply = 1000,
};
constexpr ReplyTimes kPagingTimes{.piece = 5000};
constexpr ReplyTimes kMailTimes{.piece = 3000, .begin = 100};

TEST(ReplyDialogue, HearsUntilTheEndOfAReplyOrOfItsTime) {
    struct Row {
        const char* name;
        const DialogueManner& manner;
        std::vector<Peer::Act> acts;
        ReplyTimes times;
        int outcome;
        std::int32_t code;
        Pieces pieces;
        std::uint32_t time;
    };
    const std::string longLine(5000, 'x');
    for (const Row& row : std::vector<Row>{
             {"at once", kPaging, {Peer::Says("250 OK\r\n")}, kPagingTimes, 0, 250, {"250 OK\r\n"}, 0},
             {"later", kPaging, {Peer::Says("250 OK\r\n", 1200)}, kPagingTimes, 0, 250, {"250 OK\r\n"}, 1200},
             {"split",
              kPaging,
              {Peer::Says("25"), Peer::Says("0 O", 10)},
              kPagingTimes,
              0,
              250,
              {"250 O"},
              10},
             {"first piece",
              kPaging,
              {Peer::Says("250"), Peer::Says(" OK")},
              kPagingTimes,
              0,
              250,
              {"250"},
              0},
             {"number inside", kPaging, {Peer::Says("-> 550 no")}, kPagingTimes, 0, 550, {"-> 550 no"}, 0},
             {"no number", kPaging, {Peer::Says("hello")}, kPagingTimes, 0, 0, {"hello"}, 0},
             {"silence", kPaging, {}, kPagingTimes, -2, 0, {}, 5000},
             {"in the last moment", kPaging, {Peer::Says("250", 5000)}, kPagingTimes, 0, 250, {"250"}, 5000},
             {"too late", kPaging, {Peer::Says("250", 5001)}, kPagingTimes, -2, 0, {}, 5000},
             {"no time", kPaging, {Peer::Says("250")}, {.piece = 0}, -2, 0, {}, 0},
             {"half", kPaging, {Peer::Says("25", 7)}, kPagingTimes, -2, 0, {"25"}, 5000},
             {"end", kPaging, {Peer::Says("2"), Peer::Closes(20)}, kPagingTimes, -9, 0, {"2"}, 20},
             {"reset", kPaging, {Peer::Resets(20)}, kPagingTimes, -10, 0, {}, 20},
             {"flood", kPaging, {Peer::Floods(longLine)}, kPagingTimes, 0, 0, {longLine.substr(0, 256)}, 0},

             {"line", kMail, {Peer::Says("250 ok\r\n")}, kMailTimes, 0, 250, {"250 ok"}, 0},
             {"number alone", kMail, {Peer::Says("250\r\n")}, kMailTimes, 0, 250, {"250"}, 0},
             {"joined lines",
              kMail,
              {Peer::Says("250-a 1\r\n250-b\r\n250 c\r\n354 more\r\n")},
              kMailTimes,
              0,
              250,
              {"250-a 1", "250-b", "250 c"},
              0},
             {"octet by octet",
              kMail,
              Peer::Dribbles("250-a\r\n251 b\r\n", 1),
              kMailTimes,
              0,
              251,
              {"250-a", "251 b"},
              14},
             {"line feeds alone",
              kMail,
              {Peer::Says("250-a\n250 b\n")},
              kMailTimes,
              0,
              250,
              {"250-a", "250 b"},
              0},
             {"mail silence", kMail, {}, kMailTimes, -2, 0, {}, 3100},
             {"begun in time",
              kMail,
              {Peer::Says("25", 100), Peer::Says("0 a\r\n", 2999)},
              kMailTimes,
              0,
              250,
              {"250 a"},
              3099},
             {"stalls in a line", kMail, {Peer::Says("220-a\r\n22", 50)}, kMailTimes, -2, 0, {"220-a"}, 3050},
             {"each line has its time",
              kMail,
              {Peer::Says("250-a\r\n", 2999), Peer::Says("250 b\r\n", 2999)},
              kMailTimes,
              0,
              250,
              {"250-a", "250 b"},
              5998},
             {"the whole has its time",
              kMail,
              {Peer::Says("250-a\r\n", 2000), Peer::Says("250-b\r\n", 2000)},
              {.piece = 3000, .begin = 100, .whole = 4500},
              -2,
              0,
              {"250-a", "250-b"},
              4500},
             {"mail end",
              kMail,
              {Peer::Says("250-a\r\n250"), Peer::Closes(30)},
              kMailTimes,
              -9,
              0,
              {"250-a"},
              30},
             {"mail reset", kMail, {Peer::Resets(40)}, kMailTimes, -10, 0, {}, 40},
             {"endless line", kMail, {Peer::Floods(longLine)}, kMailTimes, -8, 0, {}, 0},
         }) {
        SCOPED_TRACE(row.name);
        VirtualClock clock;
        CKorBase log("Test", clock);
        Peer peer(clock, {{"", row.acts}});
        ASSERT_EQ(peer.Connect("host", 1, 1000), tcp::kSuccess);
        ReplyDialogue dialogue(peer, log, row.manner);
        const Reply reply = dialogue.Hear(row.times);
        EXPECT_EQ(reply.outcome, row.outcome);
        EXPECT_EQ(reply.code, row.code);
        EXPECT_EQ(reply.pieces, row.pieces);
        EXPECT_EQ(clock.Ticks(), row.time);
        EXPECT_EQ(peer.IsConnected(), row.outcome > tcp::kBufferFull - 1);
    }
}

class Dialogue : public testing::Test {
  protected:
    std::string Log() const { return TemporaryFolder::Read(folder.File("log.txt")); }

    VirtualClock clock;
    TemporaryFolder folder;
    CKorBase log{"Test", clock};
};

TEST_F(Dialogue, AFloodEndsAtTheBoundOrAtTheDeadline) {
    Peer quick(clock, {{"", {Peer::Floods("250-and more\r\n")}}});
    (void)quick.Connect("host", 1, 1000);
    const Reply large = ReplyDialogue(quick, log, kMail).Hear(kMailTimes);
    EXPECT_EQ(large.outcome, tcp::kBufferFull);
    EXPECT_EQ(large.pieces.size(), 77U);  // of 13 octets: above 1000
    EXPECT_EQ(clock.Ticks(), 0U);

    Peer slow(clock, {{"", {Peer::Floods("250-a\r\n", 1000)}}});
    (void)slow.Connect("host", 1, 1000);
    const Reply late = ReplyDialogue(slow, log, kMail).Hear({.piece = 3000, .begin = 100, .whole = 20'500});
    EXPECT_EQ(late.outcome, tcp::kTotalTimedOut);
    EXPECT_EQ(late.pieces.size(), 20U);
    EXPECT_EQ(clock.Ticks(), 20'500U);
}

// A protocol over it is a table: what is said, what is expected, and the code of a failure.
struct Step {
    const char* command;
    std::vector<std::int32_t> accepted;
    std::int32_t failure;
};

std::int32_t Lead(ReplyDialogue& dialogue, const std::vector<Step>& steps, const ReplyTimes& times,
                  std::int32_t noReply) {
    for (const Step& step : steps) {
        const Reply reply = *step.command == '\0' ? dialogue.Hear(times) : dialogue.Ask(step.command, times);
        if (reply.outcome == tcp::kTotalTimedOut) return noReply;
        if (reply.outcome != tcp::kSuccess) return TransportResult(reply.outcome).Number();
        if (std::ranges::find(step.accepted, reply.code) == step.accepted.end()) return step.failure;
    }
    return 0;
}

TEST_F(Dialogue, APageWithRepliesInPiecesAndWhatNobodyAskedFor) {
    log.SetLogFile(folder.File("log.txt"));
    Peer peer(clock, {
                         {"", {Peer::Says("220 hello\r\n")}},
                         {"LOGI secret", {Peer::Says("250"), Peer::Says(" in\r\n", 150)}},
                         {"PAGE 123", {Peer::Says("250 OK\r\n"), Peer::Says("250 OK\r\n")}},
                         {"DATA", Peer::Dribbles("354 Begin\r\n", 5)},
                         {"text", {}},
                         {".", {Peer::Says("250 a reply without a line end")}},
                         {"SEND", {Peer::Says("550 no\r\n", 10)}},
                     });
    ASSERT_EQ(peer.Connect("host", 1, 1000), tcp::kSuccess);
    ReplyDialogue dialogue(peer, log, kPaging);
    const std::vector<std::int32_t> good{220, 221, 250, 354};
    EXPECT_EQ(Lead(dialogue, {{"", good, 1}}, kPagingTimes, 9), 0);
    EXPECT_EQ(dialogue.Ask("LOGI secret", "LOGI ****", kPagingTimes).code, 250);
    EXPECT_EQ(Lead(dialogue, {{"PAGE 123", good, 2}, {"DATA", {354}, 3}}, kPagingTimes, 9), 0);
    EXPECT_EQ(dialogue.SayText("text\r\n.", "text"), tcp::kSuccess);
    EXPECT_EQ(dialogue.Hear(kPagingTimes).code, 250);
    EXPECT_EQ(Lead(dialogue, {{"SEND", good, 4}}, kPagingTimes, 9), 4);
    // The rest of the login's line, the rest of "354", and in vain that of the reply without an end.
    EXPECT_EQ(clock.Ticks(), 150U + 3 * 5 + 8 * 5 + 200 + 10);
    EXPECT_EQ(peer.heard, "LOGI secret\r\nPAGE 123\r\nDATA\r\ntext\r\n.\r\nSEND\r\n");
    EXPECT_EQ(Log(),
              "[22:13:20]  Heard [220 hello <CRLF> ]\n[22:13:20]  Said [LOGI ****]\n[22:13:20]  Heard [250]\n"
              "[22:13:20]  Said [PAGE 123]\n[22:13:20]  Heard [250 OK <CRLF> ]\n[22:13:20]  Said [DATA]\n"
              "[22:13:20]  Heard [354]\n[22:13:20]  Said [text]\n"
              "[22:13:20]  Heard [250 a reply without a line end]\n[22:13:20]  Said [SEND]\n"
              "[22:13:20]  Heard [550 no <CRLF> ]\n");
}

TEST_F(Dialogue, AMailIsATableOfSteps) {
    const std::vector<Step> steps{{"", {220}, 1}, {"HELO me", {250}, 101}, {"MAIL FROM: <a@b>", {250}, 3}};
    struct Row {
        std::vector<Peer::Row> rows;
        std::int32_t code;
        std::uint32_t time;
    };
    const Peer::Row greeting{"", {Peer::Says("220-a\r\n220 b\r\n", 20)}};
    for (const Row& row : std::vector<Row>{
             {{greeting,
               {"HELO me", {Peer::Says("250-x\r\n"), Peer::Says("250 y\r\n", 5)}},
               {"MAIL FROM: <a@b>", {Peer::Says("250 ok\r\n")}}},
              0,
              25},
             {{greeting, {"HELO me", {Peer::Says("502 no\r\n")}}}, 101, 20},
             {{greeting, {"HELO me", {}}}, 591, 3120},
             {{greeting, {"HELO me", {Peer::Closes(7)}}}, 10054, 27},
             {{greeting, {"HELO me", {Peer::Resets(7)}}}, 10053, 27},
             {{{"", {Peer::Says("554 go away\r\n"), Peer::Closes()}}}, 1, 0},
             {{{"", {}}}, 591, 3100},
         }) {
        VirtualClock time;
        Peer peer(time, row.rows);
        ASSERT_EQ(peer.Connect("host", 1, 1000), tcp::kSuccess);
        ReplyDialogue dialogue(peer, log, kMail);
        EXPECT_EQ(Lead(dialogue, steps, kMailTimes, 591), row.code);
        EXPECT_EQ(time.Ticks(), row.time);
    }
}

TEST_F(Dialogue, WhatIsHandedInStaysOneCommand) {
    log.SetLogFile(folder.File("log.txt"));
    log.SetActivityFile(folder.File("activity.txt"));
    Peer peer(clock, {{"", {}}, {"PAGE 1  QUIT ", {}}});
    (void)peer.Connect("host", 1, 1000);
    ReplyDialogue dialogue(peer, log, kMail);
    EXPECT_EQ(dialogue.Say(std::string_view("PAGE 1\r\nQUIT\0", 13)), tcp::kSuccess);
    EXPECT_EQ(peer.heard, "PAGE 1  QUIT \r\n");
    EXPECT_EQ(Log(), "[22:13:20]  COMMAND : PAGE 1  QUIT \n");
    EXPECT_NE(TemporaryFolder::Read(folder.File("activity.txt")).find("COMMAND : PAGE 1  QUIT"),
              std::string::npos);
}

TEST_F(Dialogue, TellsWhyACommandDidNotGoOut) {
    struct Row {
        const char* name;
        std::vector<Peer::Act> acts;
        std::size_t room;
        int outcome;
        std::uint32_t time;
    };
    for (const Row& row : std::vector<Row>{
             {"a peer that does not read", {Peer::Says("220 a\r\n")}, 0, tcp::kTotalTimedOut, 3000},
             {"a flood behind the reply",
              {Peer::Says("220 a\r\n"), Peer::Floods("x")},
              99,
              tcp::kBufferFull,
              0},
             {"an end behind the reply",
              {Peer::Says("220 a\r\n"), Peer::Closes()},
              99,
              tcp::kClosedByPeer,
              0},
             {"an end in its line", {Peer::Says("220 a"), Peer::Closes(50)}, 99, tcp::kClosedByPeer, 50},
         }) {
        SCOPED_TRACE(row.name);
        VirtualClock time;
        Peer peer(time, {{"", row.acts}});
        (void)peer.Connect("host", 1, 1000);
        peer.room = row.room;
        ReplyDialogue dialogue(peer, log, kPaging);
        EXPECT_EQ(dialogue.Hear(kPagingTimes).code, 220);
        EXPECT_EQ(dialogue.Ask("QUIT", kPagingTimes).outcome, row.outcome);
        EXPECT_EQ(time.Ticks(), row.time);
    }
    Peer nobody(clock, {});
    nobody.connectTime = 10'001;
    EXPECT_EQ(nobody.Connect("host", 1, 10'000), tcp::kConnectTimedOut);
    EXPECT_EQ(clock.Ticks(), 10'000U);
    EXPECT_EQ(ReplyDialogue(nobody, log, kPaging).Ask("QUIT", kPagingTimes).outcome, tcp::kNotConnected);
    EXPECT_EQ(ReplyDialogue(nobody, log, kMail).Ask("QUIT", kMailTimes).outcome, tcp::kNotConnected);
}

TEST(TransportResult, HasACodeForEveryOutcome) {
    for (const auto& [outcome, code] : {std::pair{0, 0},
                                        {-1, 10060},
                                        {-9, 10054},
                                        {-10, 10053},
                                        {-2, 22025},
                                        {-3, 22025},
                                        {-4, 22025},
                                        {-8, 22025},
                                        {10061, 22025},
                                        {11001, 22025}}) {
        EXPECT_EQ(TransportResult(outcome), code) << outcome;
    }
}

}  // namespace
