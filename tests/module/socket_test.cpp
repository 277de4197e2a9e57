// The TCP client over the sockets of Windows: what only they show.
#include "foundation/net/KorTcpSocket.h"

#include <array>
#include <gtest/gtest.h>
#include <winsock2.h>

namespace {

constexpr std::uint32_t kLongest = 10'000;  // ms, for what comes at once

// A listening socket whose one connection the test plays by hand.
class Peer {
  public:
    Peer() {
        WSADATA data{};
        EXPECT_EQ(::WSAStartup(MAKEWORD(2, 2), &data), 0);
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        EXPECT_EQ(::bind(listener_, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(::listen(listener_, 1), 0);
        EXPECT_EQ(::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size), 0);
        port_ = ntohs(address.sin_port);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() {
        StopListening();
        ::WSACleanup();
    }

    std::uint16_t Port() const { return port_; }
    void Accept() { connection_ = ::accept(listener_, nullptr, nullptr); }
    void Write(const std::string& octets) {
        ::send(connection_, octets.data(), static_cast<int>(octets.size()), 0);
    }
    void Close() { ::closesocket(std::exchange(connection_, INVALID_SOCKET)); }
    void StopListening() { ::closesocket(std::exchange(listener_, INVALID_SOCKET)); }
    // The connection ends with a reset instead of an orderly close.
    void Reset() {
        const linger now{1, 0};
        ::setsockopt(connection_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
        Close();
    }

  private:
    SOCKET listener_ = INVALID_SOCKET;
    SOCKET connection_ = INVALID_SOCKET;
    std::uint16_t port_ = 0;
};

class WinSocket : public testing::Test {
  protected:
    void Connect() {
        ASSERT_EQ(socket.Connect("127.0.0.1", peer.Port(), kLongest), tcp::kSuccess);
        peer.Accept();
    }
    int Receive() {
        std::array<char, 64> buffer{};
        return socket.ReceiveWithin(buffer.data(), buffer.size(), kLongest, received);
    }
    // How a connection has ended is told in several ways.
    void ExpectFailure(int code) {
        EXPECT_NE(code, tcp::kSuccess);
        EXPECT_NE(code, tcp::kTotalTimedOut);
    }

    Peer peer;
    CKorTcpSocket socket;
    std::size_t received = 0;
};

TEST_F(WinSocket, OnlyDataIsSomethingToRead) {
    Connect();
    peer.Write("x");
    EXPECT_TRUE(socket.WaitForData(kLongest));
    EXPECT_EQ(Receive(), tcp::kSuccess);
    EXPECT_FALSE(socket.WaitForData(1));
    peer.Close();
    const Timer timer(SystemClock(), kLongest);
    EXPECT_FALSE(socket.WaitForData(kLongest));  // the end is told at once
    EXPECT_FALSE(timer.Expired());
    EXPECT_EQ(Receive(), tcp::kClosedByPeer);
    Connect();
    peer.Reset();
    EXPECT_FALSE(socket.WaitForData(kLongest));
    ExpectFailure(Receive());
}

TEST_F(WinSocket, ARefusedConnectionIsToldByTheFirstOperation) {
    peer.StopListening();
    EXPECT_EQ(socket.Connect("127.0.0.1", peer.Port(), kLongest), tcp::kSuccess);
    ExpectFailure(Receive());
    socket.Disconnect();
    EXPECT_GT(socket.Connect("no.such.host.invalid", peer.Port(), kLongest), 0);
    EXPECT_FALSE(socket.IsConnected());
}

}  // namespace
