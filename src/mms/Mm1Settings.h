// The settings of an MMS provider that is reached as a handset reaches it.
#pragma once
#include "mms/MmsConstants.h"

#include <cstdint>
#include <string>

struct Mm1Settings {
    std::string device = "Siemens AG WM USB Modem";  // a port or telephony line, and the modem of the entry
    std::string accessPoint, account, password;
    std::string gateway;               // "http://10.10.10.10:8080"
    std::string mmsc;                  // URL
    std::int32_t sizeLimit = 307'200;  // octets of an encoded message
    std::int32_t timeout = 60'000;     // ms for a request
    std::int32_t messageStorage = mms::asSTORAGE_ALL;
};
