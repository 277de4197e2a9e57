// The paging dialogue with a server that says anything, in pieces of any size: every call ends within its
// time-outs, and what is handed in stays one line a command.
#include "Fuzz.h"
#include "dialup/PagerProtocolSnpp.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Gives the octets piece by piece, whatever is said to it, and then silence or the end.
class AnyServer final : public Stream {
  public:
    AnyServer(VirtualClock& clock, std::string octets, std::size_t piece, bool ends)
        : Stream(clock), octets_(std::move(octets)), piece_(piece), ends_(ends) {}

    std::string heard;

    int Connect(const std::string&, std::uint16_t, std::uint32_t) override {
        connected_ = true;
        return tcp::kSuccess;
    }
    bool IsConnected() const override { return connected_; }

  private:
    int Write(const char* data, std::size_t size) override {
        heard.append(data, size);
        due_ = std::min(octets_.size(), due_ + piece_);
        return static_cast<int>(size);
    }
    int Read(char* data, std::size_t size) override {
        if (due_ == 0) due_ = std::min(octets_.size(), piece_);
        if (at_ == due_ && at_ == octets_.size() && ends_) return 0;
        if (at_ == due_) return -net::kWouldBlock;
        const std::size_t count = octets_.copy(data, std::min(size, due_ - at_), at_);
        at_ += count;
        return static_cast<int>(count);
    }
    net::Readiness Look() override {
        if (at_ < due_ || due_ == 0) return net::Readiness::kData;
        return at_ == octets_.size() && ends_ ? net::Readiness::kEnded : net::Readiness::kNothing;
    }
    void Close() override { connected_ = false; }

    std::string octets_;
    std::size_t piece_;
    bool ends_;
    std::size_t at_ = 0, due_ = 0;
    bool connected_ = false;
};

}  // namespace

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
