#include "foundation/serial/HearUntil.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kLongestRead = 4096;  // octets; a line that never falls silent ends the read

std::string InSevenBits(std::string octets) {
    for (char& octet : octets) octet &= 0x7F;
    return octets;
}

// The wait with the echo as it would be heard.
class Ear {
  public:
    explicit Ear(const HearUntil& wait)
        : wait_(&wait), echo_(wait.sevenBits ? InSevenBits(std::string(wait.echo)) : wait.echo) {}

    // What is heard of octets: no parity, no whole echo.
    std::string HeardOf(std::string octets) const {
        if (wait_->sevenBits) octets = InSevenBits(std::move(octets));
        if (const std::size_t at = octets.find(echo_); at != std::string::npos)
            octets.erase(at, echo_.size());
        return octets;
    }

    // Whether the octets end within a line.
    bool IsInLine(std::string_view octets) const {
        return !octets.empty() && (wait_->sevenBits ? octets.back() & 0x7F : octets.back()) >= ' ';
    }

    // Judges what was heard so far, which may end within the echo.
    Heard Judge(std::string_view heard) const {
        heard = heard.substr(0, EchoBegin(heard));
        if (wait_->accept != nullptr) return wait_->accept(heard);
        return heard.find(wait_->text) != std::string_view::npos ? Heard::kWhole : Heard::kNotYet;
    }

  private:
    // Where a beginning of the echo stands with which the octets end.
    std::size_t EchoBegin(std::string_view heard) const {
        if (echo_.empty()) return heard.size();
        const std::size_t from = heard.size() - std::min(heard.size(), echo_.size());
        std::size_t at = heard.find(echo_.front(), from);
        while (at != std::string_view::npos && !echo_.starts_with(heard.substr(at))) {
            at = heard.find(echo_.front(), at + 1);
        }
        return std::min(at, heard.size());
    }

    const HearUntil* wait_;
    std::string echo_;
};

}  // namespace

Heard AnyOctets(std::string_view heard) { return heard.empty() ? Heard::kNotYet : Heard::kEnough; }

Hearing Hear(CVrmComIO& port, const HearUntil& wait, const OnRead& onRead) {
    const Ear ear(wait);
    Hearing hearing;
    std::string all;
    std::size_t begin = 0;  // of the line with which the last read ended
    for (int attempt = 0; attempt < wait.tries && hearing.outcome == Heard::kNotYet; ++attempt) {
        port.GetClock().Sleep(attempt == 0 ? wait.before : wait.pause);
        if (wait.line != nullptr) port.Log(logmask::kVerbatim, "%s", wait.line);
        std::string octets;
        (void)port.ReadBytes(octets, kLongestRead, wait.read, [&](std::string_view arrived) {
            return ear.Judge(ear.HeardOf(all + std::string(arrived))) == Heard::kWhole;
        });
        if (!ear.IsInLine(all)) begin = all.size();
        all += octets;
        hearing.heard = ear.HeardOf(all);
        hearing.outcome = ear.Judge(hearing.heard);
        if (!onRead || octets.empty()) continue;
        if (const std::string heard = ear.HeardOf(all.substr(begin)); !heard.empty()) onRead(heard);
    }
    return hearing;
}
