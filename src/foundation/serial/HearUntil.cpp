#include "foundation/serial/HearUntil.h"

namespace {

constexpr std::size_t kLongestRead = 4096;  // octets; a line that never falls silent ends the read

Heard Judge(const HearUntil& wait, std::string_view heard) {
    if (wait.accept != nullptr) return wait.accept(heard);
    return heard.find(wait.text) != std::string_view::npos ? Heard::kWhole : Heard::kNotYet;
}

}  // namespace

Heard AnyOctets(std::string_view heard) { return heard.empty() ? Heard::kNotYet : Heard::kEnough; }

Hearing Hear(CVrmComIO& port, const HearUntil& wait, const OnRead& onRead) {
    Hearing hearing;
    for (int attempt = 0; attempt < wait.tries && hearing.outcome == Heard::kNotYet; ++attempt) {
        port.GetClock().Sleep(attempt == 0 ? wait.before : wait.pause);
        if (wait.line != nullptr) port.Log(logmask::kVerbatim, "%s", wait.line);
        std::string octets;
        (void)port.ReadBytes(octets, kLongestRead, wait.read, [&](std::string_view arrived) {
            return Judge(wait, hearing.heard + std::string(arrived)) == Heard::kWhole;
        });
        hearing.heard += octets;
        if (!octets.empty() && onRead) onRead(octets);
        hearing.outcome = Judge(wait, hearing.heard);
    }
    return hearing;
}
