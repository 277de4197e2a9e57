#include "foundation/net/SocketApi.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace net {

namespace {

int ErrorNumber(int error) {
    switch (error) {
        case EAGAIN:
        case EINPROGRESS:
            return kWouldBlock;
        case ECONNABORTED:
            return kAborted;
        case ECONNRESET:
        case EPIPE:
            return kReset;
        case ENOTCONN:
            return 10057;
        case ECONNREFUSED:
            return 10061;
        case ETIMEDOUT:
            return 10060;
        default:
            return 10000 + error;
    }
}

bool IsReady(Handle socket, short events) {
    pollfd entry{static_cast<int>(socket), events, 0};
    return ::poll(&entry, 1, 0) > 0;
}

}  // namespace

int Start() { return 0; }
void Stop() {}

Handle Create() {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
    if (socket < 0) return kInvalid;
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

void Close(Handle socket) { ::close(static_cast<int>(socket)); }

int Resolve(const std::string& host, std::uint32_t& address, std::string& text) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return 11001;
    address = reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr;
    ::freeaddrinfo(found);
    std::array<char, INET_ADDRSTRLEN> dotted{};
    ::inet_ntop(AF_INET, &address, dotted.data(), dotted.size());
    text = dotted.data();
    return 0;
}

// What poll tells of a socket needs no event of its own.
Attempt::Attempt(Handle socket) : socket_(socket), event_(1) {}
Attempt::~Attempt() = default;

int Attempt::Begin(std::uint32_t address, std::uint16_t port) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = address;
    target.sin_port = htons(port);
    const int outcome =
        ::connect(static_cast<int>(socket_), reinterpret_cast<const sockaddr*>(&target), sizeof target);
    return outcome == 0 ? 0 : ErrorNumber(errno);
}

bool Attempt::HasEnded() const { return net::IsReady(socket_, POLLOUT); }

int Send(Handle socket, const char* data, std::size_t size) {
    const ssize_t sent = ::send(static_cast<int>(socket), data, size, MSG_NOSIGNAL);
    return sent >= 0 ? static_cast<int>(sent) : -ErrorNumber(errno);
}

int Receive(Handle socket, char* data, std::size_t size) {
    const ssize_t received = ::recv(static_cast<int>(socket), data, size, 0);
    return received >= 0 ? static_cast<int>(received) : -ErrorNumber(errno);
}

Readiness Look(Handle socket) {
    if (!IsReady(socket, POLLIN)) return Readiness::kNothing;
    int count = 0;
    return ::ioctl(static_cast<int>(socket), FIONREAD, &count) == 0 && count > 0 ? Readiness::kData
                                                                                 : Readiness::kEnded;
}

Waiter::Waiter() : first_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
Waiter::~Waiter() { ::close(static_cast<int>(first_)); }

void Waiter::Wait(Handle socket, std::uint32_t milliseconds) {
    std::array<pollfd, 2> entries{
        {{static_cast<int>(first_), POLLIN, 0}, {static_cast<int>(socket), POLLIN, 0}}};
    ::poll(entries.data(), socket == kInvalid ? 1 : 2, static_cast<int>(milliseconds));
    eventfd_t count = 0;
    if ((entries[0].revents & POLLIN) != 0) (void)::eventfd_read(static_cast<int>(first_), &count);
}

void Waiter::Wake() { (void)::eventfd_write(static_cast<int>(first_), 1); }

}  // namespace net
