// What the command_status of an answer means to the caller.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>

// Of a submit_sm_resp, or of a generic_nack in its place.
ResultCode SubmitResultOf(std::uint32_t commandStatus);
// Of a bind response.
ResultCode BindResultOf(std::uint32_t commandStatus);
