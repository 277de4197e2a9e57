// The reader of UCP replies on a line that says anything: it ends in its time, with a documented code, and
// the same one however the octets come.
#include "Common/UcpTap/UcpResponse.h"
#include "DialledLine.h"
#include "dialup/UcpDialogue.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view kFrame(
    "\x02"
    "01/00022/O/01////3//DF\x03");
constexpr std::size_t kMostSaid = 1024;  // octets; what comes octet by octet takes its time
constexpr std::uint64_t kOpening = 500;
constexpr std::uint64_t kLongest = 7 * 4000;

struct Outcome {
    std::int32_t code;
    std::string response;
    bool operator==(const Outcome&) const = default;
};

Outcome Read(std::string_view says, std::size_t fragment, std::uint32_t pause) {
    DialledLine line(says, fragment, pause);
    Outcome outcome;
    outcome.code = HearUcpReply(line.port, kFrame, outcome.response).Number();
    if (line.clock.Slept() > kOpening + kLongest) std::abort();
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string_view says = TextOf(data + 2, std::min<std::size_t>(size - 2, kMostSaid));
    const std::uint32_t pause = data[1] * std::uint32_t{40};
    const Outcome whole = Read(says, 0, pause);
    constexpr std::array kCodes{0, 33461, 33462, 33463};
    if (std::ranges::find(kCodes, whole.code) == kCodes.end()) std::abort();
    const bool answered = whole.code == 0 || !whole.response.empty();
    if (answered && std::string_view("AaNn").find(whole.response.at(0)) == std::string_view::npos)
        std::abort();
    if (Read(says, data[0] + std::size_t{1}, pause) != whole) std::abort();
    const UcpResponse direct(says);
    if ((direct.Result() == UcpResult::kNothingReceived) != says.empty()) std::abort();
    return 0;
}
