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
    const int error = net::Connect(socket_, address, port);
    if (error != 0 && error != net::kWouldBlock) return fail(error);
    if (!Await(timeout, [this] { return net::HasConnectEnded(socket_); })) return fail(tcp::kConnectTimedOut);
    peer_ = text + ":" + std::to_string(port);
    state_ = State::kConnected;
    return tcp::kSuccess;
}

void CKorTcpSocket::Close() {
    if (socket_ != net::kInvalid) net::Close(socket_);
    socket_ = net::kInvalid;
    if (started_) net::Stop();
    started_ = false;
    state_ = State::kDisconnected;
}
