#include "foundation/net/SocketApi.h"

#include <winsock2.h>
#include <ws2tcpip.h>

namespace net {

namespace {
SOCKET Of(Handle socket) { return static_cast<SOCKET>(socket); }

WSAEVENT Event(std::intptr_t event) { return reinterpret_cast<WSAEVENT>(event); }
}  // namespace

int Start() {
    WSADATA data{};
    return ::WSAStartup(MAKEWORD(2, 2), &data);
}
void Stop() { ::WSACleanup(); }

Handle Create() {
    const SOCKET socket = ::WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, WSA_FLAG_OVERLAPPED);
    if (socket == INVALID_SOCKET) return kInvalid;
    u_long nonBlocking = 1;
    ::ioctlsocket(socket, FIONBIO, &nonBlocking);
    const BOOL on = TRUE;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    return static_cast<Handle>(socket);
}

void Close(Handle socket) { ::closesocket(Of(socket)); }

int Resolve(const std::string& host, std::uint32_t& address, std::string& text) {
    const hostent* found = ::gethostbyname(host.c_str());
    if (found == nullptr || found->h_addrtype != AF_INET || found->h_addr_list[0] == nullptr) {
        const int error = ::WSAGetLastError();
        return error != 0 ? error : WSAHOST_NOT_FOUND;
    }
    in_addr first{};
    memcpy(&first, found->h_addr_list[0], sizeof first);
    text = ::inet_ntoa(first);
    address = ::inet_addr(text.c_str());
    return 0;
}

// The event is bound to the socket before the attempt starts, so that its end cannot be missed.
Attempt::Attempt(Handle socket)
    : socket_(socket), event_(reinterpret_cast<std::intptr_t>(::WSACreateEvent())) {
    if (!IsReady()) return;
    ::WSAEventSelect(Of(socket_), Event(event_), FD_CONNECT);
    ::WSAResetEvent(Event(event_));
}
Attempt::~Attempt() {
    if (!IsReady()) return;
    ::WSAEventSelect(Of(socket_), nullptr, 0);
    ::WSACloseEvent(Event(event_));
}

int Attempt::Begin(std::uint32_t address, std::uint16_t port) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_addr.s_addr = address;
    target.sin_port = htons(port);
    const int outcome = ::connect(Of(socket_), reinterpret_cast<const sockaddr*>(&target), sizeof target);
    return outcome == 0 ? 0 : ::WSAGetLastError();
}

bool Attempt::HasEnded() const {
    const WSAEVENT event = Event(event_);
    return ::WSAWaitForMultipleEvents(1, &event, FALSE, 0, FALSE) == WSA_WAIT_EVENT_0;
}

int Send(Handle socket, const char* data, std::size_t size) {
    const int sent = ::send(Of(socket), data, static_cast<int>(size), 0);
    return sent >= 0 ? sent : -::WSAGetLastError();
}

int Receive(Handle socket, char* data, std::size_t size) {
    const int received = ::recv(Of(socket), data, static_cast<int>(size), 0);
    return received >= 0 ? received : -::WSAGetLastError();
}

Readiness Look(Handle socket) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(Of(socket), &readable);
    timeval none{};
    if (::select(0, &readable, nullptr, nullptr, &none) == 0) return Readiness::kNothing;
    u_long count = 0;
    return ::ioctlsocket(Of(socket), FIONREAD, &count) == 0 && count > 0 ? Readiness::kData
                                                                         : Readiness::kEnded;
}

Waiter::Waiter()
    : first_(reinterpret_cast<std::intptr_t>(::CreateEventW(nullptr, FALSE, FALSE, nullptr))),
      second_(reinterpret_cast<std::intptr_t>(::CreateEventW(nullptr, FALSE, FALSE, nullptr))) {}
Waiter::~Waiter() {
    ::CloseHandle(Event(first_));
    ::CloseHandle(Event(second_));
}

void Waiter::Wait(Handle socket, std::uint32_t milliseconds) {
    HANDLE events[2] = {Event(first_), Event(second_)};
    DWORD count = 1;
    if (socket != kInvalid) {
        // Lasts; each read makes the event ready for what comes next.
        if (socket != watched_) ::WSAEventSelect(Of(socket), Event(second_), FD_READ | FD_CLOSE);
        watched_ = socket;
        count = 2;
    }
    ::WaitForMultipleObjects(count, events, FALSE, milliseconds);
}

void Waiter::Wake() { ::SetEvent(Event(first_)); }

}  // namespace net
