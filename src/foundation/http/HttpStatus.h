// What the client does about the status of a response: one table.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>

struct HttpStatus {
    enum class Action { kDone, kRedirect, kServerChallenge, kProxyChallenge, kFail, kRepeat } action;
    ResultCode code;  // of kFail, and of a challenge whose answer was refused
};

// Every 2xx ends the request: repeating it would do twice what the server has accepted. What is not listed
// is repeated.
HttpStatus StatusOf(std::uint32_t status);
