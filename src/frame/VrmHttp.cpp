#include "frame/VrmHttp.h"

#include <algorithm>
#include <utility>

CVrmHttp::CVrmHttp(std::string className, Clock& clock, std::unique_ptr<HttpTransport> transport)
    : CVrmBase(std::move(className), clock), http_(clock, std::move(transport)) {}

void CVrmHttp::SetLogFile(const std::string& name) {
    CVrmBase::SetLogFile(name);
    http_.SetLogFile(name);
}

void CVrmHttp::SetActivityFile(const std::string& name) {
    CVrmBase::SetActivityFile(name);
    http_.SetActivityFile(name);
}

void CVrmHttp::HidePasswords(std::vector<std::string> passwords) {
    http_.HidePasswords(passwords);
    CVrmBase::HidePasswords(std::move(passwords));
}

void CVrmHttp::ClearHttp() {
    http_.Close();
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
}

void CVrmHttp::SetProxy(const std::string& server, std::int32_t port, http::Account account) {
    http_.settings.proxy.clear();
    http_.settings.proxyAccount = {};
    if (server.empty()) return;
    const HttpUrl proxy = HttpUrl::Parse(server);
    // What is no host at all is left to fail: without a proxy the request would go another way than meant.
    http_.settings.proxy = (proxy.host.empty() ? server : proxy.host) + ':' +
                           std::to_string(port != 0 ? port : proxy.PortOr(false));
    http_.settings.proxyAccount = std::move(account);
}

void CVrmHttp::SetTimeout(std::int64_t seconds) {
    constexpr std::int64_t kLongest = 86400;
    http_.settings.timeout = static_cast<std::uint32_t>(std::clamp<std::int64_t>(seconds, 1, kLongest));
}

void CVrmHttp::SetKeepAlive() { http_.settings.keepAlive = AdvancedSetting("HttpKeepAlive", 1) != 0; }
