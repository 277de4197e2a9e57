// The settings of an MM7 provider.
#pragma once
#include "mms/MmsMessage.h"

#include <cstdint>
#include <string>

struct Mm7Settings {
    std::string host;       // or a whole URL, whose port and path go before those below
    std::int32_t port = 0;  // 0 = the scheme's
    std::string path;
    bool useSsl = false;
    std::string webAccount, webPassword;
    MmsSettings submission;           // what the envelope says of who submits
    std::int32_t sizeLimit = 307200;  // octets of an encoded message
    std::int32_t timeout =
        kDefaultTimeout;         // ms for a whole request, taken as whole seconds; below 1 the default
    std::string proxyServer;     // empty = none
    std::int32_t proxyPort = 0;  // 0 = that of `proxyServer`, else 80
    std::string proxyAccount, proxyPassword;

    static constexpr std::int32_t kDefaultTimeout = 60000;
};
