// A server that only answers: every submit_sm gets a response with an eight-character id, every other request
// its plain response. Native; one thread a connection.
#pragma once
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

class SmppSink {
  public:
    explicit SmppSink(std::uint16_t port = 0) : listener_(::socket(AF_INET, SOCK_STREAM, 0)) {
        const int on = 1;
        ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            ::listen(listener_, 64) != 0) {
            std::perror("sink");
        }
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        std::thread([listener = listener_] {
            for (int client = 0; (client = ::accept(listener, nullptr, nullptr)) >= 0;) {
                std::thread(Serve, client).detach();
            }
        }).detach();
    }
    SmppSink(const SmppSink&) = delete;
    SmppSink& operator=(const SmppSink&) = delete;
    ~SmppSink() {
        ::shutdown(listener_, SHUT_RDWR);
        ::close(listener_);
    }

    std::uint16_t Port() const { return port_; }

  private:
    static void Serve(int client) {
        const int on = 1;
        ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        std::vector<std::uint8_t> input(1 << 20);
        std::string output;
        std::size_t held = 0;
        std::uint32_t id = 0;
        for (ssize_t size = 0; (size = ::recv(client, input.data() + held, input.size() - held, 0)) > 0;) {
            held += static_cast<std::size_t>(size);
            std::size_t at = 0;
            output.clear();
            while (held - at >= 16) {
                const std::uint8_t* pdu = &input[at];
                const std::size_t length =
                    std::size_t{pdu[0]} << 24 | std::size_t{pdu[1]} << 16 | std::size_t{pdu[2]} << 8 | pdu[3];
                if (length < 16 || held - at < length) break;
                if ((pdu[4] & 0x80) == 0) {
                    const bool submit = pdu[7] == 4 && pdu[6] == 0;
                    const bool bind = pdu[6] == 0 && (pdu[7] == 9 || pdu[7] == 2 || pdu[7] == 1);
                    char answer[32] = {0, 0, 0,
                                       static_cast<char>(submit ? 25
                                                         : bind ? 17
                                                                : 16),
                                       static_cast<char>(0x80)};
                    std::memcpy(answer + 5, pdu + 5, 3);
                    std::memcpy(answer + 12, pdu + 12, 4);
                    if (submit) {
                        constexpr const char* kDigits = "0123456789ABCDEF";
                        ++id;
                        for (int i = 0; i < 8; ++i) answer[16 + i] = kDigits[id >> (28 - 4 * i) & 15];
                    }
                    output.append(answer, static_cast<std::size_t>(answer[3]));
                }
                at += length;
            }
            std::memmove(input.data(), input.data() + at, held - at);
            held -= at;
            if (!output.empty() && ::send(client, output.data(), output.size(), MSG_NOSIGNAL) < 0) break;
        }
        ::close(client);
    }

    int listener_;
    std::uint16_t port_ = 0;
};
