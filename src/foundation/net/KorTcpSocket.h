// The TCP client of the system.
#pragma once
#include "foundation/Clock.h"
#include "foundation/net/NameLookup.h"
#include "foundation/net/SocketApi.h"
#include "foundation/net/Stream.h"

#include <cstdint>
#include <string>
#include <utility>

class CKorTcpSocket final : public Stream {
  public:
    enum class State { kDisconnected = 1, kConnected = 3 };

    explicit CKorTcpSocket(Clock& clock = SystemClock(),
                           NameLookup::Platform platformLookup = NameLookup::AskPlatform)
        : Stream(clock), platformLookup_(std::move(platformLookup)) {}
    ~CKorTcpSocket() override { Disconnect(); }

    // The look-up of the name counts in the time. The outcome of the attempt is not looked at: the first send
    // or receive reports a refused connection.
    int Connect(const std::string& host, std::uint16_t port, std::uint32_t timeout) override;
    bool IsConnected() const override { return socket_ != net::kInvalid; }
    State ConnectionState() const { return state_; }

    const std::string& PeerAddress() const { return peer_; }  // "10.0.0.1:2775"

    // For a thread that sleeps on the connection (net::Waiter).
    net::Handle SocketHandle() const { return socket_; }

  private:
    int Reach(std::uint32_t address, std::uint16_t port, std::uint32_t timeout);
    int Write(const char* data, std::size_t size) override { return net::Send(socket_, data, size); }
    int Read(char* data, std::size_t size) override { return net::Receive(socket_, data, size); }
    net::Readiness Look() override { return net::Look(socket_); }
    void Close() override;

    NameLookup::Platform platformLookup_;
    net::Handle socket_ = net::kInvalid;
    State state_ = State::kDisconnected;
    std::string peer_;
    bool started_ = false;
};
