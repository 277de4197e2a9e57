#include "dialup/TapDialogue.h"

#include "Common/UcpTap/TapResponse.h"
#include "foundation/serial/HearUntil.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::uint32_t kBeforeIdentification = 1000;  // ms
constexpr int kIdentificationAttempts = 3;
constexpr std::uint32_t kBeforeEnd = 50;  // ms
constexpr std::string_view kSync = "\r";
constexpr std::string_view kEndOfTransmission = "\x04\r";

constexpr HearUntil kSyncAck{.line = "WAIT FOR Identification Sync ACK",
                             .tries = 10,
                             .read = 1000,
                             .before = 50,
                             .pause = 50,
                             .text = "ID=",
                             .sevenBits = true};
constexpr HearUntil kIdentificationAck{
    .line = "WAIT FOR Identification ACK", .tries = 10, .read = 1000, .text = "\x1B[p\r", .sevenBits = true};
constexpr HearUntil kEndAck{.line = "WAIT FOR End-Of-Transmission ACK",
                            .tries = 3,
                            .read = 2000,
                            .before = 1000,
                            .pause = 2000,
                            .text = "\x1B\x04\r",
                            .sevenBits = true};

// Behind a line that says enough another may follow, behind an acknowledgement nothing does.
constexpr HearUntil kReply{.line = "WAIT FOR Transmission ACK",
                           .tries = 4,
                           .read = 2000,
                           .before = 3000,
                           .pause = 1000,
                           .accept =
                               [](std::string_view heard) {
                                   if (TapResponse(heard).Result() == TapResult::kNothing)
                                       return Heard::kNotYet;
                                   return heard.ends_with('\r') || heard.ends_with('\n') ? Heard::kWhole
                                                                                         : Heard::kEnough;
                               },
                           .sevenBits = true};

struct Meaning {
    TapResult result;
    const char* line;
    ResultCode code;
};
constexpr auto kMeanings = std::to_array<Meaning>({
    {TapResult::kNothing, "READ BYTES, Transmission ACK NOT received", result::TapNoAcknowledgement},
    {TapResult::kAcknowledged, "READ BYTES, Transmission ACK received", result::Success},
    {TapResult::kInvalidPager, "Invalid Pager number reported by provider", result::InvalidRecipient},
    {TapResult::kNotAllowed, "Pager number not allowed or blocked by provider", result::TapBarred},
    {TapResult::kInvalidMessage, "Invalid Message reported by provider", result::TapInvalidMessage},
    {TapResult::kSystemProblem, "Unknown error , NACK received", result::TapNoAcknowledgement},
    {TapResult::kRefused, "Unknown error , NACK received", result::TapNoAcknowledgement},
});

void Say(CVrmComIO& port, const char* line, std::string_view octets) {
    port.Log(logmask::kVerbatim, "%s", line);
    (void)port.WriteBytes(octets);
}

// Whether the answer came, which is logged.
bool Hears(CVrmComIO& port, const HearUntil& wait, const char* line) {
    if (Hear(port, wait).outcome != Heard::kWhole) return false;
    port.Log(logmask::kVerbatim, "%s", line);
    return true;
}

bool Identifies(CVrmComIO& port, std::string_view logon) {
    Say(port, "WRITE Initial Sync Request", kSync);
    if (!Hears(port, kSyncAck, "READ BYTES, Identification Sync ACK received")) return false;
    Say(port, "WRITE Identification Request", logon);
    return Hears(port, kIdentificationAck, "READ BYTES, Identification ACK received");
}

}  // namespace

ResultCode IdentifyTap(CVrmComIO& port, std::string_view logon) {
    port.GetClock().Sleep(kBeforeIdentification);
    for (int attempt = 0; attempt < kIdentificationAttempts; ++attempt) {
        if (Identifies(port, logon)) return result::Success;
    }
    port.Log(logmask::kVerbatim, "TIMEOUT, Identification ACK not received");
    return result::TapNegotiationFailed;
}

ResultCode HearTapReply(CVrmComIO& port, std::string_view block, std::string& response) {
    HearUntil wait = kReply;
    wait.echo = block;
    const Hearing hearing = Hear(port, wait, [&](std::string_view octets) {
        const TapResponse reply(octets);
        port.Log(logmask::kVerbatim, "READ BYTES, string=[%s]", reply.Text().c_str());
        if (!reply.Text().empty()) response = reply.Text();
    });
    const TapResult result =
        hearing.outcome == Heard::kNotYet ? TapResult::kNothing : TapResponse(hearing.heard).Result();
    const Meaning& meaning = *std::ranges::find(kMeanings, result, &Meaning::result);
    port.Log(logmask::kVerbatim, "%s", meaning.line);
    return meaning.code;
}

void EndTapTransmission(CVrmComIO& port) {
    port.GetClock().Sleep(kBeforeEnd);
    Say(port, "WRITE End-Of-Transmission Request", kEndOfTransmission);
    if (!Hears(port, kEndAck, "READ BYTES, End-Of-Transmission ACK received")) {
        port.Log(logmask::kVerbatim, "READ BYTES, End-Of-Transmission ACK NOT received");
    }
}
