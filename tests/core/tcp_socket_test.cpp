// The TCP client over the machine's loopback, in virtual time, which only its own pauses advance. What waits
// for the machine waits as long as it takes.
#include "foundation/net/KorTcpSocket.h"
#include "support/ScriptedPeer.h"
#include "support/TcpPeer.h"
#include "support/VirtualClock.h"

#include <array>
#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kNever = Timer::kForever;

class TcpSocket : public testing::Test {
  protected:
    void Connect() {
        ASSERT_EQ(socket.Connect("127.0.0.1", peer.Port(), kNever), tcp::kSuccess);
        peer.Accept();
    }
    int Receive(std::string& octets) {
        std::array<char, 64> buffer{};
        std::size_t received = 0;
        const int code = socket.ReceiveWithin(buffer.data(), buffer.size(), kNever, received);
        octets.assign(buffer.data(), received);
        return code;
    }

    VirtualClock clock;
    TcpPeer peer;
    CKorTcpSocket socket{clock};
    std::string line;
    std::size_t sent = 0;
};

TEST_F(TcpSocket, GivesLinesAndWhatLiesBehindThem) {
    Connect();
    EXPECT_EQ(socket.PeerAddress(), "127.0.0.1:" + std::to_string(peer.Port()));
    EXPECT_EQ(socket.ConnectionState(), CKorTcpSocket::State::kConnected);
    const std::string longLine(5000, 'x');
    peer.Write("one\r\ntwo\r\n\r\r\n\r\n" + longLine + "\r\nrest");
    for (const std::string& expected :
         {std::string("one"), std::string("two"), std::string("\r\r\n"), longLine}) {
        EXPECT_EQ(socket.ReceiveLine(line, kNever, kNever), tcp::kSuccess);
        EXPECT_EQ(line, expected);
    }
    EXPECT_EQ(Receive(line), tcp::kSuccess);
    EXPECT_EQ(line, "rest");
    peer.Write("more");
    EXPECT_TRUE(socket.WaitForData(kNever));
    EXPECT_EQ(Receive(line), tcp::kSuccess);
    EXPECT_EQ(line, "more");
    socket.SetTerminator("#");
    peer.Write("a\r\nb#");
    EXPECT_EQ(socket.ReceiveLine(line, kNever, kNever), tcp::kSuccess);
    EXPECT_EQ(line, "a\r\nb");
    EXPECT_EQ(socket.SendLine("HELO", 100, 100), tcp::kSuccess);
    EXPECT_EQ(peer.Read(5), "HELO#");
}

TEST_F(TcpSocket, EndsWaitingAfterTheTotalOrTheIdleTime) {
    Connect();
    std::array<char, 8> buffer{};
    std::size_t received = 0;
    struct Row {
        int expected;
        std::uint32_t time;
        std::function<int()> wait;
    };
    // A peer that does not read takes only so much.
    const std::string flood(std::size_t{16} << 20, 'x');
    EXPECT_EQ(socket.Send(flood, kNever, 50, sent), tcp::kIdleTimedOut);
    EXPECT_GT(sent, 0U);
    EXPECT_LT(sent, flood.size());
    while (sent > 0) EXPECT_EQ(socket.Send(flood, kNever, 50, sent), tcp::kIdleTimedOut);
    for (const Row& row : {
             Row{tcp::kIdleTimedOut, 1000, [&] { return socket.ReceiveLine(line, kNever, 1000); }},
             Row{tcp::kTotalTimedOut, 500, [&] { return socket.ReceiveLine(line, 500, kNever); }},
             Row{tcp::kTotalTimedOut, 300,
                 [&] { return socket.ReceiveWithin(buffer.data(), buffer.size(), 300, received); }},
             Row{0, 700, [&] { return socket.WaitForData(700) ? 1 : 0; }},
             Row{tcp::kIdleTimedOut, 50, [&] { return socket.Send(flood, kNever, 50, sent); }},
             Row{tcp::kTotalTimedOut, 70, [&] { return socket.Send(flood, 70, kNever, sent); }},
         }) {
        const std::uint32_t start = clock.Ticks();
        EXPECT_EQ(row.wait(), row.expected);
        EXPECT_EQ(clock.Ticks() - start, row.time);
    }
    EXPECT_TRUE(socket.IsConnected());
}

TEST_F(TcpSocket, WhatIsSentTooLateTimesOut) {
    ScriptedPeer slow(clock, {{"HELO", {}}, {"QUIT", {}}});
    ASSERT_EQ(slow.Connect("peer", 1, kNever), tcp::kSuccess);
    slow.writeTime = 100;
    EXPECT_EQ(slow.Send("HELO\r\n", 101, kNever, sent), tcp::kSuccess);
    EXPECT_EQ(slow.Send("QUIT\r\n", 100, kNever, sent), tcp::kTotalTimedOut);
    EXPECT_EQ(sent, 6U);
}

TEST_F(TcpSocket, GivesUpAConnectionThatNobodyTakes) {
    // The peer accepts nobody: what its queue does not take is left without an answer.
    std::deque<CKorTcpSocket> waiting;
    int code = tcp::kSuccess;
    std::uint32_t start = 0;
    while (code == tcp::kSuccess && waiting.size() < 16) {
        start = clock.Ticks();
        code = waiting.emplace_back(clock).Connect("127.0.0.1", peer.Port(), 10'000);
    }
    EXPECT_EQ(code, tcp::kConnectTimedOut);
    EXPECT_EQ(clock.Ticks() - start, 10'000U);
    EXPECT_FALSE(waiting.back().IsConnected());
}

TEST_F(TcpSocket, ReportsTheEndOfTheConnectionAndCanConnectAgain) {
    Connect();
    peer.Write("half");
    peer.Close();
    EXPECT_EQ(socket.ReceiveLine(line, kNever, kNever), tcp::kClosedByPeer);
    EXPECT_EQ(line, "");
    EXPECT_FALSE(socket.IsConnected());
    EXPECT_EQ(socket.ConnectionState(), CKorTcpSocket::State::kDisconnected);
    Connect();
    peer.Reset();
    EXPECT_EQ(Receive(line), tcp::kAborted);
    EXPECT_FALSE(socket.IsConnected());
    Connect();
    peer.Write("x");
    peer.Close();
    EXPECT_TRUE(socket.WaitForData(kNever));
    EXPECT_EQ(Receive(line), tcp::kSuccess);
    EXPECT_FALSE(socket.WaitForData(kNever));  // nor is the end anything to read
    socket.Disconnect();
    Connect();
    peer.Reset();
    EXPECT_FALSE(socket.WaitForData(kNever));  // an error is nothing to read
    int code = tcp::kSuccess;
    while (code == tcp::kSuccess) code = socket.Send("x", kNever, kNever, sent);
    EXPECT_EQ(code, tcp::kClosedByPeer);
}

TEST_F(TcpSocket, WithoutConnectionEveryOperationSaysSo) {
    std::array<char, 8> buffer{};
    std::size_t received = 1;
    EXPECT_EQ(socket.Send("x", 10, 10, sent), tcp::kNotConnected);
    EXPECT_EQ(socket.SendLine("x", 10, 10), tcp::kNotConnected);
    EXPECT_EQ(socket.ReceiveLine(line, 10, 10), tcp::kNotConnected);
    EXPECT_EQ(socket.Receive(buffer.data(), buffer.size(), received), tcp::kNotConnected);
    EXPECT_EQ(received, 0U);
    EXPECT_FALSE(socket.WaitForData(10));
    EXPECT_EQ(socket.Disconnect(), tcp::kSuccess);
    EXPECT_EQ(socket.Connect("no.such.host.invalid", 1, kNever), 11001);
    EXPECT_FALSE(socket.IsConnected());
    // Nobody listens: told by the first operation, not by Connect.
    peer.StopListening();
    EXPECT_EQ(socket.Connect("127.0.0.1", peer.Port(), kNever), tcp::kSuccess);
    EXPECT_GT(socket.Receive(buffer.data(), buffer.size(), received), 0);
}

// A name server that does not answer, until the test lets it; and one whose answer comes when it is wanted.
TEST_F(TcpSocket, ANameCostsNoMoreThanTheTimeOfTheConnect) {
    std::promise<HostAddress> late;
    CKorTcpSocket stalled(clock, [answer = late.get_future().share()](const std::string& host) {
        EXPECT_EQ(host, "stalled.example");
        return answer.get();
    });
    const std::uint32_t begin = clock.Ticks();
    EXPECT_EQ(stalled.Connect("stalled.example", 1, 20), tcp::kConnectTimedOut);
    EXPECT_EQ(clock.Ticks() - begin, 20U);
    EXPECT_FALSE(stalled.IsConnected());
    late.set_value({0, 0x0100007F, "127.0.0.1"});
    EXPECT_EQ(stalled.Connect("stalled.example", peer.Port(), kNever), tcp::kSuccess);
    EXPECT_EQ(stalled.PeerAddress(), "127.0.0.1:" + std::to_string(peer.Port()));
}

// The answer is given once somebody is about to wait for it, so that nearly every round has to be woken. A
// wait that nothing wakes lasts its whole time.
TEST(NameLookup, AnAnswerEndsTheWaitForIt) {
    constexpr std::chrono::seconds kLongest{60};
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < 20; ++round) {
        std::promise<HostAddress> answer;
        const NameLookup lookup("a.example", [given = answer.get_future().share()](
                                                 const std::string& /*host*/) { return given.get(); });
        EXPECT_FALSE(lookup.EndsWithin(std::chrono::milliseconds(0)));
        answer.set_value({0, 0x0100007F, "127.0.0.1"});
        ASSERT_TRUE(lookup.EndsWithin(kLongest));
        ASSERT_LT(std::chrono::steady_clock::now() - start, kLongest);
        EXPECT_EQ(lookup.Found().text, "127.0.0.1");
    }
}

TEST_F(TcpSocket, SendsNothingAsSuccess) {
    Connect();
    EXPECT_EQ(socket.Send({}, 0, 0, sent), tcp::kSuccess);
    EXPECT_EQ(sent, 0U);
}

}  // namespace
