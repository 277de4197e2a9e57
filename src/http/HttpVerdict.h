// What a provider's reply says of the message.
#pragma once
#include "foundation/ResultCode.h"
#include "http/HttpProviderSettings.h"

#include <string_view>

// 0; 33225 for "ERR: 301" (no credit), 33301 for the provider's error text, 33302 for what is neither that
// nor success. Success is the provider's success text; without one it is a number that is not zero, alone in
// the reply but for blanks and line breaks around it.
ResultCode JudgeHttpReply(const HttpProviderSettings& settings, std::string_view reply);
