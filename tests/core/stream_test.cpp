// The time-outs and bounds of a stream, over a peer in virtual time.
#include "support/ScriptedPeer.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using Peer = ScriptedPeer;
constexpr std::uint32_t kNever = Timer::kForever;

TEST(Stream, LinesHaveATotalAndAnIdleTime) {
    struct Row {
        const char* name;
        std::vector<Peer::Act> acts;
        std::uint32_t total, idle;
        int outcome;
        std::string line;
        std::uint32_t time;
    };
    for (const Row& row : std::vector<Row>{
             {"each octet restarts the idle time", Peer::Dribbles("abc\r\n", 900), kNever, 1000, 0, "abc",
              4500},
             {"not the total time", Peer::Dribbles("abc\r\n", 900), 2000, 1000, -2, "", 2000},
             {"idle", {Peer::Says("ab"), Peer::Says("\r\n", 1001)}, kNever, 1000, -3, "", 1000},
             {"total before idle", {}, 1000, 1000, -2, "", 1000},
             {"a terminator in two pieces",
              {Peer::Says("ab\r"), Peer::Says("\nc\r\n", 5)},
              10,
              10,
              0,
              "ab",
              5},
             {"closed", {Peer::Says("ab"), Peer::Closes(5)}, 10, 10, -9, "", 5},
             {"too long", {Peer::Floods("x")}, kNever, kNever, -8, "", 0},
         }) {
        SCOPED_TRACE(row.name);
        VirtualClock clock;
        Peer peer(clock, {{"", row.acts}});
        (void)peer.Connect("host", 1, kNever);
        peer.SetLongestLine(2000);
        std::string line;
        EXPECT_EQ(peer.ReceiveLine(line, row.total, row.idle), row.outcome);
        EXPECT_EQ(line, row.line);
        EXPECT_EQ(clock.Ticks(), row.time);
    }
}

TEST(Stream, WhatIsReadBeforeTheNextLineComesFirst) {
    VirtualClock clock;
    Peer peer(clock, {{"", {Peer::Says("one\r\ntwo\r\nrest"), Peer::Says("more", 300)}}});
    (void)peer.Connect("host", 1, kNever);
    std::string line;
    for (const char* expected : {"one", "two"}) {
        EXPECT_EQ(peer.ReceiveLine(line, 0, 0), tcp::kSuccess);
        EXPECT_EQ(line, expected);
    }
    std::array<char, 3> buffer{};
    std::size_t received = 0;
    for (const char* expected : {"res", "t"}) {
        EXPECT_EQ(peer.Receive(buffer.data(), buffer.size(), received), tcp::kSuccess);
        EXPECT_EQ(std::string(buffer.data(), received), expected);
    }
    EXPECT_EQ(peer.Receive(buffer.data(), buffer.size(), received), tcp::kSuccess);
    EXPECT_EQ(received, 0U);
    EXPECT_EQ(peer.ReceiveWithin(buffer.data(), buffer.size(), 200, received), tcp::kTotalTimedOut);
    EXPECT_EQ(clock.Ticks(), 200U);
    EXPECT_TRUE(peer.WaitForData(200));
    EXPECT_EQ(clock.Ticks(), 300U);
    EXPECT_EQ(peer.ReceiveWithin(buffer.data(), buffer.size(), 200, received), tcp::kSuccess);
    EXPECT_EQ(std::string(buffer.data(), received), "mor");
    EXPECT_EQ(peer.Disconnect(), tcp::kSuccess);
    EXPECT_EQ(peer.ReceiveLine(line, 10, 10), tcp::kNotConnected);
    EXPECT_FALSE(peer.WaitForData(kNever));
    EXPECT_EQ(clock.Ticks(), 300U);
}

TEST(Stream, AnEndEndsTheWaitForData) {
    for (const auto& [act, outcome] :
         {std::pair{Peer::Closes(40), tcp::kClosedByPeer}, {Peer::Resets(40), tcp::kAborted}}) {
        VirtualClock clock;
        Peer peer(clock, {{"", {act}}});
        (void)peer.Connect("host", 1, kNever);
        EXPECT_FALSE(peer.WaitForData(100));
        EXPECT_EQ(clock.Ticks(), 40U);
        std::size_t received = 0;
        EXPECT_EQ(peer.Receive(nullptr, 0, received), outcome);
        EXPECT_FALSE(peer.IsConnected());
    }
}

TEST(Stream, SendsAsFarAsThePeerReads) {
    VirtualClock clock;
    std::size_t sent = 0;
    Peer peer(clock, {{"", {}}});
    (void)peer.Connect("host", 1, kNever);
    peer.room = 0;
    EXPECT_EQ(peer.Send("abc", kNever, 50, sent), tcp::kIdleTimedOut);
    EXPECT_EQ(clock.Ticks(), 50U);
    EXPECT_EQ(peer.Send("abc", 70, kNever, sent), tcp::kTotalTimedOut);
    EXPECT_EQ(clock.Ticks(), 120U);
    EXPECT_EQ(peer.Send({}, 0, 0, sent), tcp::kSuccess);
    Peer gone(clock, {{"", {Peer::Resets()}}});
    (void)gone.Connect("host", 1, kNever);
    EXPECT_EQ(gone.Send("abc", kNever, kNever, sent), tcp::kClosedByPeer);
    EXPECT_EQ(gone.SendLine("abc", kNever, kNever), tcp::kNotConnected);
}

}  // namespace
