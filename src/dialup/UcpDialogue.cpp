#include "dialup/UcpDialogue.h"

#include "Common/UcpTap/UcpResponse.h"
#include "foundation/serial/HearUntil.h"

#include <algorithm>
#include <array>

namespace {

constexpr HearUntil kReply{
    .line = "WAITING FOR response message from ucp provider",
    .tries = 7,
    .read = 4000,
    .accept =
        [](std::string_view heard) { return FindUcpFrame(heard).isWhole ? Heard::kWhole : Heard::kNotYet; },
    .sevenBits = true};

struct Meaning {
    UcpResult result;
    const char* line;
    ResultCode code;
};
constexpr auto kMeanings = std::to_array<Meaning>({
    {UcpResult::kAcknowledged, "READ BYTES, positive ACK received, string=[%s]", result::Success},
    {UcpResult::kRefused, "READ BYTES, NACK received, string=[%s]", result::UcpRejected},
    {UcpResult::kSyntaxError, "READ BYTES, Syntax error received, string=[%s]", result::UcpSyntaxError},
    {UcpResult::kNothingReceived, "READ BYTES, Unexpected result, string=[%s]", result::UcpRejected},
});

}  // namespace

ResultCode HearUcpReply(CVrmComIO& port, std::string_view frame, std::string& response) {
    HearUntil wait = kReply;
    wait.echo = frame;
    const Hearing hearing = Hear(port, wait);
    if (hearing.heard.empty()) {
        port.Log(logmask::kVerbatim, "READ BYTES failed, no response received");
        return result::UcpNoResponse;
    }
    const UcpResponse reply(FindUcpFrame(hearing.heard).octets);
    response = reply.Text();
    const Meaning& meaning = *std::ranges::find(kMeanings, reply.Result(), &Meaning::result);
    port.Log(logmask::kVerbatim, meaning.line, response.c_str());
    return meaning.code;
}
