// The line to a dialled SMS centre that speaks UCP, once an operation is written.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/VrmComIO.h"

#include <string>
#include <string_view>

// Waits for the reply to `frame`. Line noise, the echo of the frame and a reply that is yet to end are waited
// past, up to 28 s; what is there by then is judged as it is. 0; 33461 no reply, 33462 what is none, 33463 a
// refusal. `response` gets the reply's text.
ResultCode HearUcpReply(CVrmComIO& port, std::string_view frame, std::string& response);
