// The TCP client of the system: connects with a time-out, sends whole buffers and lines, receives octets and
// lines.
#pragma once
#include "foundation/Clock.h"
#include "foundation/net/SocketApi.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tcp {
inline constexpr int kSuccess = 0;
inline constexpr int kConnectTimedOut = -1;
inline constexpr int kTotalTimedOut = -2;
inline constexpr int kIdleTimedOut = -3;
inline constexpr int kNotConnected = -4;
inline constexpr int kBufferFull = -8;
inline constexpr int kClosedByPeer = -9;
inline constexpr int kAborted = -10;
}  // namespace tcp

// All operations give a result of `tcp::` or a Windows Sockets error, positive from Connect and Receive,
// negated from Send. Times are in ms; 0xFFFFFFFF never expires. Used by one thread at a time.
class CKorTcpSocket {
  public:
    enum class State { kDisconnected = 1, kConnected = 3 };

    explicit CKorTcpSocket(Clock& clock = SystemClock()) : clock_(&clock) {}
    CKorTcpSocket(const CKorTcpSocket&) = delete;
    CKorTcpSocket& operator=(const CKorTcpSocket&) = delete;
    ~CKorTcpSocket() { Disconnect(); }

    // The outcome of the attempt is not looked at: the first send or receive reports a refused connection.
    int Connect(const std::string& host, std::uint16_t port, std::uint32_t timeout);
    int Disconnect();
    bool IsConnected() const { return socket_ != net::kInvalid; }
    State ConnectionState() const { return state_; }

    int Send(std::string_view octets, std::uint32_t total, std::uint32_t idle, std::size_t& sent);
    int SendLine(std::string_view text, std::uint32_t total, std::uint32_t idle);
    // One read; what the line buffer still holds comes first.
    int Receive(char* buffer, std::size_t size, std::size_t& received);
    int ReceiveLine(std::string& line, std::uint32_t total, std::uint32_t idle);
    bool WaitForData(std::uint32_t timeout);

    void SetTerminator(std::string terminator) { terminator_ = std::move(terminator); }
    const std::string& Terminator() const { return terminator_; }
    const std::string& PeerAddress() const { return peer_; }  // "10.0.0.1:2775"

    // For a thread that sleeps on the connection (net::Waiter).
    net::Handle SocketHandle() const { return socket_; }

  private:
    int ReceiveRaw(char* buffer, std::size_t size, std::size_t& received);

    Clock* clock_;
    net::Handle socket_ = net::kInvalid;
    State state_ = State::kDisconnected;
    std::string peer_;
    std::string terminator_ = "\r\n";
    std::string lines_;  // received and not yet read
    bool started_ = false;
};
