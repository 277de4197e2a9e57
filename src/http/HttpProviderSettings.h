// The settings of an HTTP provider.
#pragma once
#include <cstdint>
#include <string>

struct HttpProviderSettings {
    std::string host;
    std::int32_t port = 0;  // 0 = the scheme's
    std::string webAccount, webPassword;
    bool useSsl = false;
    std::string charset;  // of texts, a name that FindCharacterSet knows; empty = the GSM alphabet
    std::string successResponse, errorResponse;
    std::string proxyServer;     // empty = none
    std::int32_t proxyPort = 0;  // 0 = that of `proxyServer`, else 80
    std::string proxyAccount, proxyPassword;
    std::string urlText, urlBinary, urlUnicode;  // templates (HttpTemplate)
};
