// The readers of TAP on a line that says anything: each ends in its time, with a documented code.
#include "Common/UcpTap/TapResponse.h"
#include "DialledLine.h"
#include "dialup/TapDialogue.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view kBlock(
    "\x02"
    "123\rABC\r\x03"
    "17;\r");
constexpr std::size_t kMostSaid = 1024;  // octets; what comes octet by octet takes its time
constexpr std::uint64_t kOpening = 500;
constexpr std::uint64_t kLongestIdentification = 1000 + 3 * (10 * 1050 + 10 * 1000);
constexpr std::uint64_t kLongestReply = 3000 + 4 * 2000 + 3 * 1000;
constexpr std::uint64_t kLongestEnd = 50 + 1000 + 3 * 2000 + 2 * 2000;

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string_view says = TextOf(data + 2, std::min<std::size_t>(size - 2, kMostSaid));
    const std::uint32_t pause = data[1] * std::uint32_t{40};
    {
        DialledLine line(says, data[0], pause);
        std::string response;
        const std::int32_t code = HearTapReply(line.port, kBlock, response).Number();
        constexpr std::array kCodes{0, 33503, 33505, 34031};
        if (std::ranges::find(kCodes, code) == kCodes.end()) std::abort();
        if (!std::ranges::all_of(response, IsPrintable)) std::abort();
        if (line.clock.Slept() > kOpening + kLongestReply) std::abort();
        const std::uint64_t before = line.clock.Slept();
        EndTapTransmission(line.port);
        if (line.clock.Slept() > before + kLongestEnd) std::abort();
    }
    DialledLine line(says, data[0], pause);
    const ResultCode code = IdentifyTap(line.port, "\x1BPG1\r");
    if (code != result::Success && code != result::TapNegotiationFailed) std::abort();
    if (line.clock.Slept() > kOpening + kLongestIdentification) std::abort();
    return 0;
}
