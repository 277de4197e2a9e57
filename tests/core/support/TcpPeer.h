// A listening socket whose one connection the test plays by hand.
#pragma once
#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

class TcpPeer {
  public:
    TcpPeer() : listener_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        (void)::bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        (void)::listen(listener_, 1);
        (void)::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
    }
    TcpPeer(const TcpPeer&) = delete;
    TcpPeer& operator=(const TcpPeer&) = delete;
    ~TcpPeer() {
        Close();
        StopListening();
    }

    std::uint16_t Port() const { return port_; }
    void Accept() { connection_ = ::accept(listener_, nullptr, nullptr); }
    void Write(std::string_view octets) {
        (void)::send(connection_, octets.data(), octets.size(), MSG_NOSIGNAL);
    }
    std::string Read(std::size_t count) {
        std::string octets(count, '\0');
        octets.resize(static_cast<std::size_t>(
            std::max<ssize_t>(::recv(connection_, octets.data(), count, MSG_WAITALL), 0)));
        return octets;
    }
    void Close() { CloseOne(connection_); }
    void StopListening() { CloseOne(listener_); }
    // The connection ends with a reset instead of an orderly close.
    void Reset() {
        const linger now{1, 0};
        ::setsockopt(connection_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        Close();
    }

  private:
    static void CloseOne(int& socket) {
        if (socket >= 0) ::close(socket);
        socket = -1;
    }

    int listener_;
    int connection_ = -1;
    std::uint16_t port_ = 0;
};
