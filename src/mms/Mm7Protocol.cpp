#include "mms/Mm7Protocol.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"
#include "foundation/http/HttpUrl.h"

#include <utility>

namespace {

constexpr unsigned kEvent = logmask::kVerbatim | logmask::kActivity;
constexpr std::size_t kLogSlack = 2048;
constexpr std::size_t kLargestReply = std::size_t{1} << 20;  // octets
constexpr std::uint32_t kProxyLogonWanted = 407;
constexpr std::int64_t kMillisecondsPerSecond = 1000;

}  // namespace

CMm7Protocol::CMm7Protocol(Clock& clock, std::unique_ptr<HttpTransport> transport)
    : CVrmHttp("CMmsProtocolMm7", clock, std::move(transport)) {}

void CMm7Protocol::Clear() {
    ClearHttp();
    settings = {};
    providerResponse_.clear();
    messageId_.clear();
}

ResultCode CMm7Protocol::Send(CMmsMessage* message) {
    providerResponse_.clear();
    messageId_.clear();
    GuardPasswords({settings.webPassword, settings.proxyPassword});
    const std::string host = OneLine(settings.host);
    LogSized(kEvent, host.size() + kLogSlack, "Velqar Build %s, Server=[%s]\n", product::kBuild,
             host.c_str());
    const ResultCode code = message != nullptr ? Submit(*message) : result::InvalidMessageObject;
    const std::string text(DescribeError(code));
    if (code == result::Success) {
        Log(kEvent, "MM7 Message successfully submitted.\n");
    } else {
        Log(kEvent, "MM7 Error submitting message (%s).\n", text.c_str());
        Log(kEvent, "SEND RESULT: ERROR %ld (%s)\n", static_cast<long>(code.Number()), text.c_str());
    }
    return code;
}

ResultCode CMm7Protocol::Submit(CMmsMessage& message) {
    message.Protocol = mms::asMMS_PROTOCOL_MM7;
    message.Settings = settings.submission;
    const ResultCode encoded = message.Encode();
    if (encoded != result::Success) return encoded;
    const auto size = static_cast<std::int64_t>(message.EncodedMessage.size());
    Log(logmask::kVerbatim, "Maximum MMS size is set to %ld bytes\n", static_cast<long>(settings.sizeLimit));
    if (size > settings.sizeLimit) {
        Log(kEvent, "Data size exceeds MMS size limit (%ld bytes)\n", static_cast<long>(size));
        return result::MmsTooLarge;
    }
    Log(kEvent, "MM7 Submitting message...\n");
    Configure(message);
    const std::string url = Url();
    LogSized(kEvent, url.size() + kLogSlack, "MM7 Post data to server [%s]...\n", OneLine(url).c_str());
    Log(kEvent, "MM7 Waiting for response...\n");
    const ResultCode requested = http_.Request(url, message.EncodedMessage);
    return Judge(requested, http_.TakeReply());
}

ResultCode CMm7Protocol::Judge(ResultCode requested, const HttpReply& http) {
    // What a proxy says that let nothing through is no answer to the message.
    if (http.status == kProxyLogonWanted) requested = result::HttpProxyLogonFailed;
    Mm7Reply reply = ReadMm7Reply(http.body, settings.submission.variation);
    if (http.status != 0) LogReply(reply);
    const bool saysNothing = reply.statusCode.empty() && reply.statusText.empty();
    providerResponse_ = FromUtf8(saysNothing ? http.body : reply.statusText);
    // SOAP 1.1 sends its faults with this status.
    const bool isFault = requested == result::HttpServerError && reply.isFault;
    const ResultCode code = requested == result::Success || isFault ? ResultOf(reply) : requested;
    if (code == result::Success) messageId_ = FromUtf8(reply.messageId);
    return code;
}

void CMm7Protocol::LogReply(const Mm7Reply& reply) {
    const auto tell = [this](const char* format, const std::string& text) {
        LogSized(logmask::kVerbatim, text.size() + kLogSlack, format, text.c_str());
    };
    tell("MM7 STATUSCODE      : %s\n", reply.statusCode);
    tell("MM7 STATUSTEXT      : %s\n", reply.statusText);
    tell("MM7 MESSAGEID       : %s\n", reply.messageId);
}

// --- the connection

std::string CMm7Protocol::Url() const {
    const HttpUrl host = HttpUrl::Parse(settings.host);
    if (host.host.empty()) return settings.host;  // left to fail
    std::string url = host.scheme == HttpUrl::Scheme::kHttps || settings.useSsl ? "https://" : "http://";
    url += host.host;
    const std::int32_t port = host.port != 0 ? host.port : settings.port;
    if (port != 0) url += ':' + std::to_string(port);
    if (host.path != "/") return url + host.path;
    const std::string_view path = Trim(settings.path);
    if (!path.starts_with('/')) url += '/';
    return url.append(path);
}

void CMm7Protocol::Configure(const CMmsMessage& message) {
    const std::int64_t timeout = settings.timeout > 0 ? settings.timeout : Mm7Settings::kDefaultTimeout;
    SetTimeout((timeout + kMillisecondsPerSecond - 1) / kMillisecondsPerSecond);
    SetKeepAlive();
    SetProxy(settings.proxyServer, settings.proxyPort, {settings.proxyAccount, settings.proxyPassword});
    HttpSettings& to = http_.settings;
    to.secure = settings.useSsl;
    to.webAccount = {settings.webAccount, settings.webPassword};
    to.postHeaders = message.Boundary;
    to.largestBody = kLargestReply;
    to.keepErrorReplies = true;
}

// --- provider files

std::vector<ProviderRow> CMm7Protocol::ProviderRows() {
    constexpr const char* kProvider = "Provider";
    Mm7Settings& s = settings;
    MmsSettings& submission = settings.submission;
    return {
        {kProvider, "ProviderHost", &s.host},
        {kProvider, "ProviderPort", &s.port},
        {kProvider, "ProviderPath", &s.path},
        {kProvider, "ProviderUseSSL", &s.useSsl},
        {kProvider, "ProviderWebAccount", &s.webAccount},
        {kProvider, "ProviderWebPassword", &s.webPassword},
        {kProvider, "ProviderVASPID", &submission.vaspId},
        {kProvider, "ProviderVASID", &submission.vasId},
        {kProvider, "ProviderServiceCode", &submission.serviceCode},
        {kProvider, "ProviderMM7Version", &submission.version},
        {kProvider, "ProviderMM7Schema", &submission.schema},
        {kProvider, "ProviderMM7Variation", &submission.variation},
        {kProvider, "ProviderMessageSizeLimit", &s.sizeLimit},
        {kProvider, "ProviderTimeout", &s.timeout},
        {kProvider, "ProxyServer", &s.proxyServer},
        {kProvider, "ProxyPort", &s.proxyPort},
        {kProvider, "ProxyAccount", &s.proxyAccount},
        {kProvider, "ProxyPassword", &s.proxyPassword},
    };
}

ResultCode CMm7Protocol::SaveConfig(const std::string& file) {
    return SaveProviderFile(file, ProviderRows());
}
ResultCode CMm7Protocol::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}
