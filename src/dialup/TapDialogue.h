// The line to a dialled paging terminal that speaks TAP. Octets are read without their parity bit.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/VrmComIO.h"

#include <string>
#include <string_view>

// Wakes the terminal and identifies this side with `logon`. 0, or 33501.
ResultCode IdentifyTap(CVrmComIO& port, std::string_view logon);

// Waits for the reply to `block`. 0; 34031, 33503 and 33504 for the refusals that say why, 33505 for another
// and for none. `response` gets the reply's text.
ResultCode HearTapReply(CVrmComIO& port, std::string_view block, std::string& response);

// Tells the terminal that nothing follows; whether it agrees only stands in the log.
void EndTapTransmission(CVrmComIO& port);
