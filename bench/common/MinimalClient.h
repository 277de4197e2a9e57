// The least that submits messages: the same octets with the same window over a socket, and nothing else.
#pragma once
#include "foundation/net/SocketApi.h"
#include "smpp/SmppSubmit.h"

#include <cstdint>
#include <string>
#include <vector>

inline CSmsMessageX BenchMessage() {
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    message.Sender = "1234";
    message.Data = std::u16string(160, u'x');
    return message;
}

inline std::string BenchSubmit() {
    SmppSubmitBuilder builder;
    std::vector<std::string> pdus;
    if (builder.Build({}, BenchMessage(), pdus) != 0) return {};
    return pdus.front();
}

// Sends `count` submits keeping at most `window` unanswered; blocks in reads. False when the connection
// fails.
inline bool RunMinimalClient(std::uint16_t port, int window, int count) {
    net::Start();
    std::uint32_t address = 0;
    std::string text;
    const net::Handle socket = net::Create();
    bool works = net::Resolve("127.0.0.1", address, text) == 0;
    {
        net::Attempt attempt(socket);
        const int connecting = attempt.Begin(address, port);
        works = works && (connecting == 0 || connecting == net::kWouldBlock);
        const Timer limit(SystemClock(), 5000);
        while (works && !attempt.HasEnded()) works = !limit.Expired();
    }
    const std::string pdu = BenchSubmit();
    std::string batch;
    std::vector<char> buffer(65536);
    std::size_t received = 0;
    constexpr std::size_t kAnswer = 25;  // of the sink
    net::Waiter waiter;
    for (int sent = 0, answered = 0; works && answered < count;) {
        batch.clear();
        for (; sent < count && sent - answered < window; ++sent) batch += pdu;
        for (std::size_t at = 0; works && at < batch.size();) {
            const int moved = net::Send(socket, batch.data() + at, batch.size() - at);
            if (moved > 0) at += static_cast<std::size_t>(moved);
            works = moved > 0 || moved == -net::kWouldBlock;
        }
        int moved = net::Receive(socket, buffer.data(), buffer.size());
        if (moved == -net::kWouldBlock) {
            waiter.Wait(socket, 1000);
            continue;
        }
        works = works && moved > 0;
        received += static_cast<std::size_t>(moved > 0 ? moved : 0);
        answered = static_cast<int>(received / kAnswer);
    }
    net::Close(socket);
    return works;
}
