// The text of an SMPP delivery receipt, SMPP 3.4 appendix B:
// "id:... sub:001 dlvrd:001 submit date:YYMMDDhhmm done date:YYMMDDhhmm stat:DELIVRD err:000 text:..."
#pragma once
#include "foundation/Clock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct SmsReceipt {
    std::string id;
    std::int32_t status = 0;         // asDELIVERYSTATUS_...
    std::int32_t completedTime = 0;  // seconds since 1970; 0 when the text names none
    std::int32_t statusCode = 0;
    bool hasState = false;   // it names a state
    bool isWhole = false;    // its text holds an id and a state, and both keys begin a word
    bool isPlainId = false;  // the id stands as the server gave it, not in a text
};

// Nothing when the text is no receipt (it holds no "ID").
std::optional<SmsReceipt> ParseReceipt(std::string_view text, Clock& clock = SystemClock());

// The status of a receipt's stat word; 0 when none is known.
std::int32_t ReceiptStatus(std::string_view stat);
