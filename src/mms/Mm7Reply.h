// What an MMSC answers to a submission over MM7 (3GPP TS 23.140, chapter 10): a SOAP envelope, alone or as a
// part of a multipart.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <string>
#include <string_view>

// Each in one line; empty for what the reply does not say. In UTF-8.
struct Mm7Reply {
    std::string statusCode;
    std::string statusText;  // of a fault without one: what the fault says
    std::string messageId;
    bool isFault = false;
};

// Looks for the names that the variation has, an asMMS_MM7VARIATION_ constant, and, when there is no status
// code by those, for the others. Names count without their prefix and outside the envelope's header. What
// was read whole counts, also when the reply is cut behind it.
Mm7Reply ReadMm7Reply(std::string_view octets, std::int32_t variation);

// 0 for full or partial success; 33800 to 33838 by the status code. 33830 for what has none that is known,
// and for a fault that says success.
ResultCode ResultOf(const Mm7Reply& reply);
