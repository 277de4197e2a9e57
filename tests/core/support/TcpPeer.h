// A listening socket whose one connection the test plays by hand.
#pragma once
#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <thread>
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
    void Accept() {
        connection_ = ::accept(listener_, nullptr, nullptr);
        const timeval longest{10, 0};  // no test waits for ever
        ::setsockopt(connection_, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
    }
    void Write(std::string_view octets) {
        (void)::send(connection_, octets.data(), octets.size(), MSG_NOSIGNAL);
    }
    std::string Read(std::size_t count) {
        std::string octets(count, '\0');
        octets.resize(static_cast<std::size_t>(
            std::max<ssize_t>(::recv(connection_, octets.data(), count, MSG_WAITALL), 0)));
        return octets;
    }
    // One unit whose first four octets are its length.
    std::string ReadPdu() {
        std::string pdu = Read(4);
        std::size_t length = 0;
        for (const char octet : pdu) length = length << 8 | static_cast<std::uint8_t>(octet);
        return pdu + Read(std::max<std::size_t>(length, 4) - 4);
    }
    // Whether the other side has closed the connection; waits for it.
    bool HasEnded() {
        char octet = 0;
        return ::recv(connection_, &octet, 1, 0) == 0 || errno == ECONNRESET;
    }
    // Returns when the other side's system has all that was written.
    void AwaitTaken() {
        for (int left = 1; left > 0; std::this_thread::yield()) ::ioctl(connection_, SIOCOUTQ, &left);
    }
    // Writes without reading until nothing more is taken or so many octets are; their number.
    std::size_t Flood(std::string_view octets, std::size_t limit) {
        std::size_t written = 0;
        pollfd room{connection_, POLLOUT, 0};
        while (written<limit&& ::poll(&room, 1, 500)> 0) {
            const std::string_view rest = octets.substr(written % octets.size());
            written += static_cast<std::size_t>(std::max<ssize_t>(
                ::send(connection_, rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT), 0));
        }
        return written;
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
