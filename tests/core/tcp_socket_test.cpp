// The TCP client over the machine's loopback; its time-outs run in virtual time, which only its own pauses
// advance.
#include "foundation/net/KorTcpSocket.h"
#include "support/TcpPeer.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kNever = 0xFFFFFFFF;

class TcpSocket : public testing::Test {
  protected:
    void Connect() {
        ASSERT_EQ(socket.Connect("127.0.0.1", peer.Port(), 1000), tcp::kSuccess);
        peer.Accept();
    }
    // Reads until something comes; what the peer has sent may still be on its way.
    int Receive(std::string& octets) {
        std::array<char, 64> buffer{};
        std::size_t received = 0;
        int code = tcp::kSuccess;
        while (code == tcp::kSuccess && received == 0) {
            socket.WaitForData(1000);
            code = socket.Receive(buffer.data(), buffer.size(), received);
        }
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
    peer.Write("one\r\ntwo\r\n\r\r\n" + longLine + "\r\nrest");
    for (const std::string& expected :
         {std::string("one"), std::string("two"), std::string("\r"), longLine}) {
        EXPECT_EQ(socket.ReceiveLine(line, kNever, kNever), tcp::kSuccess);
        EXPECT_EQ(line, expected);
    }
    EXPECT_EQ(Receive(line), tcp::kSuccess);
    EXPECT_EQ(line, "rest");
    socket.SetTerminator("#");
    peer.Write("a\r\nb#");
    EXPECT_EQ(socket.ReceiveLine(line, kNever, kNever), tcp::kSuccess);
    EXPECT_EQ(line, "a\r\nb");
    EXPECT_EQ(socket.SendLine("HELO", 100, 100), tcp::kSuccess);
    EXPECT_EQ(peer.Read(5), "HELO#");
}

TEST_F(TcpSocket, EndsWaitingAfterTheTotalOrTheIdleTime) {
    Connect();
    const std::uint32_t start = clock.Ticks();
    EXPECT_EQ(socket.ReceiveLine(line, kNever, 1000), tcp::kIdleTimedOut);
    EXPECT_NEAR(clock.Ticks() - start, 1000, 2);
    EXPECT_EQ(socket.ReceiveLine(line, 500, kNever), tcp::kTotalTimedOut);
    EXPECT_FALSE(socket.WaitForData(0));
    // A peer that does not read: what fits is sent, then the time is over.
    const std::string flood(std::size_t{16} << 20, 'x');
    EXPECT_EQ(socket.Send(flood, kNever, 50, sent), tcp::kIdleTimedOut);
    EXPECT_GT(sent, 0U);
    EXPECT_LT(sent, flood.size());
    EXPECT_TRUE(socket.IsConnected());
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
    peer.Reset();
    EXPECT_EQ(socket.WaitForData(1000), false);  // an error is nothing to read
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
    EXPECT_EQ(socket.Connect("no.such.host.invalid", 1, 1000), 11001);
    EXPECT_FALSE(socket.IsConnected());
    // Nobody listens: told by the first operation, not by Connect.
    peer.StopListening();
    EXPECT_EQ(socket.Connect("127.0.0.1", peer.Port(), 1000), tcp::kSuccess);
    EXPECT_GT(socket.Receive(buffer.data(), buffer.size(), received), 0);
}

TEST_F(TcpSocket, SendsNothingAsSuccess) {
    Connect();
    EXPECT_EQ(socket.Send({}, 0, 0, sent), tcp::kSuccess);
    EXPECT_EQ(sent, 0U);
}

}  // namespace
