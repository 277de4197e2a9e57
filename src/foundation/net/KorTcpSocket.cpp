#include "foundation/net/KorTcpSocket.h"

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
    std::uint32_t address = 0;
    std::string text;
    if (const int error = net::Resolve(host, address, text); error != 0) return fail(error);
    if (const int error = Reach(address, port, timeout); error != tcp::kSuccess) return fail(error);
    peer_ = text + ":" + std::to_string(port);
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
