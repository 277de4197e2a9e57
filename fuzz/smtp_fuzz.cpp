// The MM4 channel with a server that says anything, in pieces of any size: every call ends within its
// time-outs, what is handed in stays one line a command, and only a server that has said 250 to the text has
// taken it.
#include "AnyServer.h"
#include "Fuzz.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "mms/MmsProtocolMm4.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::uint64_t kLongestDialogue = 10 * 63'000;  // ms; greeting, nine replies and their time-outs

// Time-outs take a fraction of the steps.
class QuickClock final : public VirtualClock {
  public:
    void Sleep(std::uint32_t milliseconds) override { VirtualClock::Sleep(kStep * milliseconds); }

  private:
    static constexpr std::uint32_t kStep = 100;
};

void Require(bool holds) {
    if (!holds) std::abort();
}

// The commands before the text: one line each, though the settings may hold anything.
void CheckCommands(const std::string& heard) {
    constexpr std::ptrdiff_t kMostCommands = 24;
    const std::string commands = heard.substr(0, heard.find("DATA\r\n"));
    Require(std::ranges::count(commands, '\n') <= kMostCommands);
    Require(std::ranges::count(commands, '\n') == std::ranges::count(commands, '\r'));
    Require(heard.find('\0') == std::string::npos);
}

// The mail ends where its only dot on a line stands.
void CheckText(const std::string& heard) {
    const std::size_t text = heard.find("\r\nX-Mms-3GPP");
    if (text == std::string::npos) return;
    const std::size_t end = heard.find("\r\n.\r\n", text);
    Require(end == std::string::npos || heard.substr(end + 5).empty() || heard.substr(end + 5) == "QUIT\r\n");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    QuickClock clock;
    const std::string all(TextOf(data + 4, size - 4));
    const std::size_t cut = std::min<std::size_t>(all.size(), data[3]);
    auto server =
        std::make_unique<AnyServer>(clock, all.substr(cut), data[0] + std::size_t{1}, (data[1] & 1) != 0);
    const AnyServer& peer = *server;
    CMmsProtocolMm4 channel(std::move(server), clock);
    const std::string text = all.substr(0, cut);
    channel.settings = {.host = "h", .account = text.substr(0, 9), .password = text, .domain = text};
    CMmsMessage message(clock);
    message.From = text;
    message.Subject = FromAnsi(text);
    message.Recipients[0].Add(text);
    message.Recipients[0].Add("c@d");
    message.Slides.push_back({.parts = {{.contentType = text, .contentLocation = text, .data = text}}});
    const ResultCode code = channel.Send(&message);
    Require(clock.Slept() <= kLongestDialogue);
    CheckCommands(peer.heard);
    CheckText(peer.heard);
    if (code == result::Success) Require(channel.ProviderResponse().find("250") != std::string::npos);
    return 0;
}
