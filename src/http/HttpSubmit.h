// From a message to the request that submits it.
#pragma once
#include "foundation/ResultCode.h"
#include "http/HttpProviderSettings.h"
#include "http/HttpTemplate.h"
#include "sms/SmsMessageX.h"

// 0; in this order: 34031 recipient, 34034 format, or hexadecimal data that is none, or a character set that
// is unknown, 33303 to 33305 no template for the format, 34033 too long.
ResultCode BuildHttpRequest(const HttpProviderSettings& settings, const CSmsMessageX& message,
                            HttpRequest& request);
