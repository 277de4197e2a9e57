// The paging dialogue with a server that says anything, in pieces of any size: every call ends within its
// time-outs, and what is handed in stays one line a command.
#include "AnyServer.h"
#include "Fuzz.h"
#include "dialup/PagerProtocolSnpp.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    VirtualClock clock;
    const std::string all(TextOf(data + 4, size - 4));
    const std::size_t cut = std::min<std::size_t>(all.size(), data[3]);
    auto server =
        std::make_unique<AnyServer>(clock, all.substr(cut), data[0] + std::size_t{1}, (data[1] & 1) != 0);
    const AnyServer& peer = *server;
    CPagerProtocolSnpp snpp(std::move(server), clock);
    snpp.settings.server = "h";
    snpp.settings.serverTimeout = 1000;
    snpp.settings.providerPassword = all.substr(0, cut / 2);
    const std::string text = all.substr(cut / 2, cut - cut / 2);
    (void)snpp.Send({"1", text});
    if (clock.Slept() > 30'000) std::abort();
    if (std::ranges::count(peer.heard, '\n') > 8 || std::ranges::count(peer.heard, '\0') > 0) std::abort();
    return 0;
}
