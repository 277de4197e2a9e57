#include "http/HttpProtocol.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/Text.h"
#include "http/HttpSubmit.h"
#include "http/HttpTemplate.h"
#include "http/HttpVerdict.h"

#include <utility>

namespace {

constexpr std::int32_t kDefaultTimeout = 60;  // s
constexpr std::size_t kLogSlack = 2048;
constexpr std::uint32_t kProxyLogonWanted = 407;

}  // namespace

CHttpProtocol::CHttpProtocol(Clock& clock, std::unique_ptr<HttpTransport> transport)
    : CVrmHttp("CSmsProtocolHttp", clock, std::move(transport)) {}

void CHttpProtocol::Clear() {
    ClearHttp();
    settings = {};
    providerResponse_.clear();
}

ResultCode CHttpProtocol::Send(const CSmsMessageX& message) {
    providerResponse_.clear();
    // Also as a template that holds it goes out, without double slashes.
    std::string inTemplate = settings.webPassword;
    MakeSlashesSingle(inTemplate);
    GuardPasswords({settings.webPassword, settings.proxyPassword, inTemplate});
    LogSubmit(message);
    const ResultCode code = Submit(message);
    const std::string text(DescribeError(code));
    if (code != result::Success) {
        Log(logmask::kVerbatim, "HTTP POST RESULT    : ERROR %d (%s)\n", code.Number(), text.c_str());
    }
    Log(logmask::kActivity, "Http Post Result = [%s]\n", text.c_str());
    return code;
}

ResultCode CHttpProtocol::Submit(const CSmsMessageX& message) {
    LogTemplates();
    HttpRequest request;
    const ResultCode code = BuildHttpRequest(settings, message, request);
    return code == result::Success ? Post(std::move(request)) : code;
}

ResultCode CHttpProtocol::Post(HttpRequest request) {
    Configure(std::move(request.body));
    const char* secure = IsSecure(request.url) ? "yes" : "no";
    const std::size_t size = request.url.size() + settings.proxyServer.size() + kLogSlack;
    if (settings.proxyServer.empty()) {
        LogSized(logmask::kActivity, size,
                 "Http Connect [%s], ProxyServer=[not using proxyserver], SSL=[%s]\n", request.url.c_str(),
                 secure);
    } else {
        LogSized(logmask::kActivity, size, "Http Connect [%s], ProxyServer=[%s:%d], SSL=[%s]\n",
                 request.url.c_str(), settings.proxyServer.c_str(), settings.proxyPort, secure);
    }
    const ResultCode code = http_.Request(request.url);
    Log(logmask::kActivity, "Http Connect Result = [%s]\n", std::string(DescribeError(code)).c_str());
    if (code != result::Success) return code;
    HttpReply reply = http_.TakeReply();
    providerResponse_ = std::move(reply.body);
    LogText(logmask::kVerbatim, "HTTP RESPONSE DATA  : %s\n", providerResponse_);
    LogText(logmask::kActivity, "Http Response Data = [%s]\n", providerResponse_);
    const ResultCode verdict = JudgeHttpReply(settings, providerResponse_);
    // What a proxy says that let nothing through is no success, whatever words are in it.
    const bool isProxys = reply.status == kProxyLogonWanted;
    return isProxys && verdict == result::Success ? result::HttpProviderUnknown : verdict;
}

void CHttpProtocol::Configure(std::string body) {
    const std::int32_t timeout = AdvancedSetting("HttpTimeout", kDefaultTimeout);
    SetTimeout(timeout > 0 ? timeout : kDefaultTimeout);
    SetKeepAlive();
    SetProxy(settings.proxyServer, settings.proxyPort, {settings.proxyAccount, settings.proxyPassword});
    HttpSettings& to = http_.settings;
    to.secure = settings.useSsl;
    to.webAccount = {settings.webAccount, settings.webPassword};
    to.postHeaders.clear();
    if (!settings.charset.empty()) {
        to.postHeaders = CKorHttp::kFormHeader + ("; charset=" + settings.charset);
    }
    to.postText = std::move(body);
}

// As the client takes it.
bool CHttpProtocol::IsSecure(const std::string& url) const {
    return settings.useSsl || HttpUrl::Parse(url).scheme == HttpUrl::Scheme::kHttps;
}

// --- log lines

// Texts of any length: a reply, a template.
void CHttpProtocol::LogText(unsigned mask, const char* format, const std::string& text) {
    LogSized(mask, text.size() + kLogSlack, format, text.c_str());
}

void CHttpProtocol::LogSubmit(const CSmsMessageX& message) {
    if (!IsLogging()) return;
    const std::string host = OneLine(settings.host);
    const std::string recipient = OneLine(message.Recipient);
    if (settings.proxyServer.empty()) {
        Log(logmask::kVerbatim, "HTTP POST [Velqar Build %s], Provider=[%s:%d], Proxy=[not using proxy]\n",
            product::kBuild, host.c_str(), settings.port);
    } else {
        Log(logmask::kVerbatim, "HTTP POST [Velqar Build %s], Provider=[%s:%d], Proxy=[%s:%d]\n",
            product::kBuild, host.c_str(), settings.port, OneLine(settings.proxyServer).c_str(),
            settings.proxyPort);
    }
    Log(logmask::kVerbatim, "SENDER ADDRESS      : %s\n", OneLine(message.Sender).c_str());
    Log(logmask::kVerbatim, "RECIPIENT ADDRESS   : %s\n", recipient.c_str());
    Log(logmask::kActivity, "Http Post Submitting message to [%s]\n", recipient.c_str());
}

void CHttpProtocol::LogTemplates() {
    LogText(logmask::kVerbatim, "HTTP URL TEXT       : [%s]\n", settings.urlText);
    LogText(logmask::kVerbatim, "HTTP URL DATA       : [%s]\n", settings.urlBinary);
    LogText(logmask::kVerbatim, "HTTP URL UCS2       : [%s]\n", settings.urlUnicode);
    LogText(logmask::kVerbatim, "HTTP SUCCESS RESP   : [%s]\n", settings.successResponse);
    LogText(logmask::kVerbatim, "HTTP ERROR RESP     : [%s]\n", settings.errorResponse);
}

// --- provider files

std::vector<ProviderRow> CHttpProtocol::ProviderRows() {
    constexpr const char* kProvider = "Provider";
    constexpr const char* kProxy = "Proxy";
    HttpProviderSettings& s = settings;
    return {
        {kProvider, "ProviderHostName", &s.host},
        {kProvider, "ProviderHostPort", &s.port},
        {kProvider, "ProviderUseSSL", &s.useSsl},
        {kProvider, "ProviderWebAccount", &s.webAccount},
        {kProvider, "ProviderWebPassword", &s.webPassword},
        {kProvider, "ProviderCharset", &s.charset},
        {kProvider, "ProviderUrlText", &s.urlText},
        {kProvider, "ProviderUrlBinary", &s.urlBinary},
        {kProvider, "ProviderUrlUnicode", &s.urlUnicode},
        {kProvider, "ProviderSuccessResponse", &s.successResponse},
        {kProvider, "ProviderErrorResponse", &s.errorResponse},
        {kProxy, "ProxyHost", &s.proxyServer},
        {kProxy, "ProxyPort", &s.proxyPort},
        {kProxy, "ProxyAccount", &s.proxyAccount},
        {kProxy, "ProxyPassword", &s.proxyPassword},
    };
}

ResultCode CHttpProtocol::SaveConfig(const std::string& file) {
    return SaveProviderFile(file, ProviderRows());
}
ResultCode CHttpProtocol::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}
