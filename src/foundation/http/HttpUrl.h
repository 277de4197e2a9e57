// A URL as the HTTP client takes it apart: "[scheme://]host[:port][/path]".
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

struct HttpUrl {
    enum class Scheme { kNone, kHttp, kHttps, kOther } scheme = Scheme::kNone;
    std::string host;        // an IPv6 address with its brackets
    std::uint16_t port = 0;  // 0 = the scheme's
    std::string path = "/";  // with the query; a fragment is left out

    bool isAbsolute = false;  // of a redirect's target: names a server of its own

    // A host is what no URL can be without: it is empty for what is none, or has a port that is none.
    static HttpUrl Parse(std::string_view text);

    std::uint16_t PortOr(bool secure) const { return port != 0 ? port : secure ? 443 : 80; }

    // Where a Location header leads: an absolute target is taken as it is, any other replaces the path.
    HttpUrl Redirected(std::string_view target) const;
    // "http://host:8080/path"
    std::string Text(bool secure) const;
};
