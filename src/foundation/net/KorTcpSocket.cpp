#include "foundation/net/KorTcpSocket.h"

#include <chrono>

int CKorTcpSocket::Connect(const std::string& host, std::uint16_t port, std::uint32_t timeout) {
    if (IsConnected()) return tcp::kSuccess;
    if (!started_) {
        if (const int error = net::Start(); error != 0) return error;
        started_ = true;
    }
    const auto fail = [this](int code) {
        Disconnect();
        return code;
    };
    socket_ = net::Create();
    if (socket_ == net::kInvalid) return fail(tcp::kConnectTimedOut);
    const Timer timer(GetClock(), timeout);
    const NameLookup lookup(host, platformLookup_);
    // One wait by the wall, so that an answer is never late, one by the clock that the time-out goes by.
    if (!Await(timeout, [&lookup] { return lookup.EndsWithin(std::chrono::milliseconds(1)); })) {
        return fail(tcp::kConnectTimedOut);
    }
    const HostAddress& found = lookup.Found();
    if (found.error != 0) return fail(found.error);
    if (const int error = Reach(found.address, port, timer.Remaining()); error != tcp::kSuccess)
        return fail(error);
    peer_ = found.text + ":" + std::to_string(port);
    state_ = State::kConnected;
    return tcp::kSuccess;
}

int CKorTcpSocket::Reach(std::uint32_t address, std::uint16_t port, std::uint32_t timeout) {
    net::Attempt attempt(socket_);
    if (!attempt.IsReady()) return tcp::kConnectTimedOut;
    const int error = attempt.Begin(address, port);
    if (error != 0 && error != net::kWouldBlock) return error;
    const bool ended = error == 0 || Await(timeout, [&attempt] { return attempt.HasEnded(); });
    return ended ? tcp::kSuccess : tcp::kConnectTimedOut;
}

void CKorTcpSocket::Close() {
    if (socket_ != net::kInvalid) net::Close(socket_);
    socket_ = net::kInvalid;
    if (started_) net::Stop();
    started_ = false;
    state_ = State::kDisconnected;
}
