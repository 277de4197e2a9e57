#include "foundation/http/KorHttp.h"

#include "foundation/Text.h"
#include "foundation/http/HttpScheme.h"
#include "foundation/http/HttpStatus.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <new>
#include <utility>

namespace {

constexpr unsigned kEvent = logmask::kVerbatim | logmask::kActivity;
constexpr std::size_t kLongestLoggedBody = 256;
constexpr std::size_t kLineRoom = 2048;                // of a log entry, besides the texts in it
constexpr std::size_t kPiece = std::size_t{64} << 10;  // octets of a body read at once
constexpr std::uint32_t kFirstPause = 1000;    // ms before a request is repeated; each next is doubled
constexpr std::uint32_t kQuickRedirects = 10;  // redirects that are followed without a pause
constexpr std::uint32_t kMostResends = 10;     // rounds in a row that the platform may ask for
constexpr std::uint32_t kServerChallenged = 401;
constexpr std::uint32_t kProxyChallenged = 407;

const char* YesNo(bool yes) { return yes ? "YES" : "NO"; }

std::uint32_t Milliseconds(std::uint32_t seconds) {
    return seconds >= Timer::kForever / 1000 ? Timer::kForever : seconds * 1000;
}

// Header lines without the one that names the host.
std::string WithoutHost(std::string_view lines) {
    constexpr std::string_view kName = "Host:";
    constexpr std::string_view kLineEnd = "\r\n";
    std::string rest;
    for (const std::string_view line : Split(lines, kLineEnd)) {
        if (line.empty() || EqualNoCase(line.substr(0, kName.size()), kName)) continue;
        rest.append(line).append(kLineEnd);
    }
    return rest;
}

// What a failed send is to the callers.
ResultCode SendFailure(std::uint32_t error) {
    switch (error) {
        case http::kTimedOut:
            return result::HttpConnectTimedOut;
        case http::kNameNotResolved:
        case http::kCannotConnect:
            return result::HttpConnectFailed;
        default:
            return result::HttpSendFailed;
    }
}

}  // namespace

CKorHttp::CKorHttp(Clock& clock, std::unique_ptr<HttpTransport> transport)
    : CKorBase("CKorHttp", clock), transport_(std::move(transport)) {}

CKorHttp::~CKorHttp() { Close(); }

ResultCode CKorHttp::Open(const std::string& url) {
    const HttpUrl parsed = HttpUrl::Parse(url);
    secure_ = settings.secure || parsed.scheme == HttpUrl::Scheme::kHttps;
    firstHost_ = parsed.host;
    return OpenUrl(parsed);
}

ResultCode CKorHttp::OpenUrl(const HttpUrl& url) {
    transport_->CloseRequest();
    requestOpen_ = false;
    systemError_ = 0;
    if (!transport_->IsLoaded()) {
        systemError_ = transport_->LoadError();
        Log(kEvent, "LoadLibrary [%s], result: [0x%08lX]\n", transport_->Library(),
            static_cast<unsigned long>(systemError_));
        return systemError_ == http::kFunctionMissing ? result::HttpImportFailed : result::HttpLibraryMissing;
    }
    if (url.host.empty()) return Failed(result::HttpConnectFailed, "URL", 0);
    url_ = url;
    Log(logmask::kVerbatim, "HTTP PROXY SERVER   : %s\n",
        settings.proxy.empty() ? "NONE" : OneLine(settings.proxy).c_str());
    Log(logmask::kVerbatim, "HTTP REQUESTTIMEOUT : %ld SECS\n", static_cast<long>(settings.timeout));
    if (sessionOpen_ && sessionProxy_ != settings.proxy) Close();
    if (!sessionOpen_) {
        const std::uint32_t error = transport_->OpenSession(kUserAgent, settings.proxy);
        if (error != http::kOk) return Failed(result::HttpSessionFailed, "SESSION", error);
        sessionOpen_ = true;
        sessionProxy_ = settings.proxy;
    }
    const std::uint32_t error = transport_->Connect(url_.host, url_.PortOr(secure_));
    if (error != http::kOk) return Failed(result::HttpConnectFailed, "CONNECT", error);
    Log(logmask::kVerbatim, "HTTP KEEP ALIVE     : %s\n", settings.keepAlive ? "ENABLED" : "DISABLED");
    return result::Success;
}

void CKorHttp::Close() {
    transport_->Close();
    requestOpen_ = false;
    sessionOpen_ = false;
}

HttpReply CKorHttp::TakeReply() { return std::exchange(reply_, {}); }

ResultCode CKorHttp::Request(const std::string& url, std::optional<std::string_view> body) {
    reply_ = {};
    isPost_ = body.has_value() || !settings.postText.empty();
    ResultCode code = result::HttpGenericFailure;
    try {
        code = Exchange(url, body.value_or(settings.postText));
    } catch (const std::bad_alloc&) {
        code = result::HttpReadMemoryFailed;
    } catch (const std::exception& error) {
        Log(kEvent, "EXCEPTION [%s], source=[%s]\n", error.what(), ClassName().c_str());
    }
    if (code != result::Success) {
        Close();
        if (!settings.keepErrorReplies) reply_ = {};
    } else if (!settings.keepAlive) {
        Close();
    }
    return code;
}

ResultCode CKorHttp::Exchange(const std::string& url, std::string_view body) {
    const ResultCode opened = Open(url);
    if (opened != result::Success) return opened;
    LogSized(logmask::kVerbatim, url.size() + kLineRoom, "HTTP CONNECT        : %s\n", OneLine(url).c_str());
    Log(logmask::kVerbatim, "HTPP TIMEOUT        : %ld seconds\n", static_cast<long>(settings.timeout));
    Log(logmask::kVerbatim, "USING SSL           : %s\n", YesNo(secure_));

    const Timer timer(GetClock(), Milliseconds(settings.timeout));
    server_ = {};
    proxy_ = {};
    lastChallenge_ = 0;
    redirects_ = 0;
    resends_ = 0;
    std::uint32_t pause = kFirstPause;
    while (true) {
        Next next = Next::kDone;
        const ResultCode code = Round(body, timer, next);
        if (code != result::Success || next == Next::kDone) return code;
        if (next == Next::kRepeat) {
            const std::uint32_t left = timer.Remaining();
            GetClock().Sleep(std::min(pause, left));
            if (pause >= left) return result::HttpConnectTimedOut;
            pause *= 2;
        }
        if (timer.Expired()) return result::HttpConnectTimedOut;
    }
}

ResultCode CKorHttp::Round(std::string_view body, const Timer& timer, Next& next) {
    if (!requestOpen_) {
        const std::uint32_t error =
            transport_->OpenRequest(isPost_ ? "POST" : "GET", url_.path, secure_, settings.keepAlive);
        if (error != http::kOk) return Failed(SendFailure(error), "REQUEST", error);
        requestOpen_ = true;
    }
    ResultCode code = Answer(http::Peer::kProxy, proxy_);
    if (code == result::Success) code = Answer(http::Peer::kServer, server_);
    if (code == result::Success) code = SendRequest(body, timer, next);
    if (code != result::Success || next != Next::kDone) return code;
    code = ReceiveReply(timer, next);
    if (code != result::Success || next != Next::kDone) return code;
    resends_ = 0;
    code = ReadHeaders();
    return code == result::Success ? Judge(timer, next) : code;
}

// Gives the platform the account with which a challenge is answered.
ResultCode CKorHttp::Answer(http::Peer peer, const Challenge& challenge) {
    if (!challenge.answered) return result::Success;
    const bool isProxy = peer == http::Peer::kProxy;
    const http::Account& account = isProxy ? settings.proxyAccount : settings.webAccount;
    Log(logmask::kVerbatim, isProxy ? "HTTP PROXY ACCOUNT  : %s\n" : "HTTP WEB ACCOUNT    : %s\n",
        OneLine(account.name).c_str());
    const std::uint32_t error = transport_->SetCredentials(peer, challenge.scheme, account);
    if (error == http::kOk) return result::Success;
    return Failed(isProxy ? result::HttpProxyLogonFailed : result::HttpLogonFailed, "ACCOUNT", error);
}

std::string CKorHttp::Headers() const {
    if (isPost_ && settings.postHeaders.empty()) return kFormHeader;
    const std::string& lines = isPost_ ? settings.postHeaders : settings.getHeaders;
    return EqualNoCase(url_.host, firstHost_) ? lines : WithoutHost(lines);
}

ResultCode CKorHttp::SendRequest(std::string_view body, const Timer& timer, Next& next) {
    if (isPost_ && body.size() > kLongestLoggedBody) {
        Log(logmask::kVerbatim, "POST DATA           : [%ld Bytes]\n", static_cast<long>(body.size()));
    } else if (isPost_) {
        Log(logmask::kVerbatim, "POST DATA           : %s\n", std::string(body).c_str());
    }
    const std::uint32_t error =
        transport_->Send(Headers(), isPost_ ? body : std::string_view(), timer.Remaining());
    if (error == http::kOk) return result::Success;
    if (AsksForResend(error, next)) return result::Success;
    return Failed(SendFailure(error), "SEND", error);
}

ResultCode CKorHttp::ReceiveReply(const Timer& timer, Next& next) {
    const std::uint32_t error = transport_->Receive(timer.Remaining());
    if (error == http::kOk) return result::Success;
    if (AsksForResend(error, next)) return result::Success;
    ResultCode code = result::HttpNoResponse;
    if (error == http::kLoginFailure && lastChallenge_ == kServerChallenged) code = result::HttpLogonFailed;
    if (error == http::kLoginFailure && lastChallenge_ == kProxyChallenged)
        code = result::HttpProxyLogonFailed;
    return Failed(code, "RECEIVE", error);
}

// Whether the platform wants the same round again, as in the steps of an account's proof.
bool CKorHttp::AsksForResend(std::uint32_t error, Next& next) {
    if (error != http::kResendRequest || resends_ >= kMostResends) return false;
    ++resends_;
    next = Next::kRound;
    return true;
}

void CKorHttp::ReadHeader(http::Header header, std::string& text, const char* format) {
    text = transport_->Read(header);
    if (text.empty() || format == nullptr) return;
    LogText(format, text);
}

ResultCode CKorHttp::ReadHeaders() {
    reply_ = {};
    const std::uint32_t error = transport_->Status(reply_.status);
    if (error != http::kOk) return Failed(result::HttpHeaderQueryFailed, "STATUS", error);
    ReadHeader(http::Header::kServer, reply_.server, "HTTP REMOTE SERVER  : %s\n");
    ReadHeader(http::Header::kVersion, reply_.version, "HTTP REMOTE VERSION : %s\n");
    ReadHeader(http::Header::kProxy, reply_.proxy, "HTTP PROXY SERVER   : %s\n");
    ReadHeader(http::Header::kStatusText, reply_.statusText, "HTTP RESPONSE TEXT  : %s\n");
    ReadHeader(http::Header::kContentType, reply_.contentType, nullptr);
    Log(logmask::kVerbatim, "HTTP RESPONSE CODE  : %ld\n", static_cast<long>(reply_.status));
    return result::Success;
}

ResultCode CKorHttp::Judge(const Timer& timer, Next& next) {
    const HttpStatus status = StatusOf(reply_.status);
    const bool isChallenge = status.action == HttpStatus::Action::kServerChallenge ||
                             status.action == HttpStatus::Action::kProxyChallenge;
    if (isChallenge) lastChallenge_ = reply_.status;
    switch (status.action) {
        case HttpStatus::Action::kDone:
            return ReadBody(timer);
        case HttpStatus::Action::kRedirect:
            return Redirect(next);
        case HttpStatus::Action::kServerChallenge:
            return Choose(settings.webAccount, server_, status.code, timer, next);
        case HttpStatus::Action::kProxyChallenge:
            if (settings.proxyAccount.name.empty()) return ReadBody(timer);
            return Choose(settings.proxyAccount, proxy_, status.code, timer, next);
        case HttpStatus::Action::kFail:
            ReadErrorBody(timer);
            return status.code;
        case HttpStatus::Action::kRepeat:
            break;
    }
    transport_->CloseRequest();
    requestOpen_ = false;
    next = Next::kRepeat;
    return result::Success;
}

ResultCode CKorHttp::Redirect(Next& next) {
    ReadHeader(http::Header::kLocation, reply_.location, nullptr);
    if (reply_.location.empty()) return Failed(result::HttpHeaderQueryFailed, "LOCATION", 0);
    const HttpUrl target = url_.Redirected(reply_.location);
    const bool wasSecure = secure_;
    if (target.isAbsolute) secure_ = target.scheme == HttpUrl::Scheme::kHttps;
    LogText("REDIRECTING TO      : %s\n", target.host.empty() ? reply_.location : target.Text(secure_));
    Log(logmask::kVerbatim, "USING SSL           : %s\n", YesNo(secure_));
    // Another server, or one that could be overheard, gets no account before it asks for one.
    const bool isSame =
        target.host == url_.host && target.PortOr(secure_) == url_.PortOr(wasSecure) && secure_ >= wasSecure;
    if (!isSame) server_ = {};
    Close();
    next = ++redirects_ > kQuickRedirects ? Next::kRepeat : Next::kRound;
    return OpenUrl(target);
}

// Chooses how a challenge is answered in the next round.
ResultCode CKorHttp::Choose(const http::Account& account, Challenge& challenge, ResultCode refused,
                            const Timer& timer, Next& next) {
    if (challenge.answered || account.name.empty()) {
        ReadErrorBody(timer);
        return refused;
    }
    std::uint32_t offered = 0;
    const std::uint32_t error = transport_->QuerySchemes(offered);
    const auto* const chosen = std::ranges::find_if(
        kHttpSchemes, [&](const HttpSchemeRow& row) { return (offered & row.scheme) != 0; });
    if (error != http::kOk || chosen == std::end(kHttpSchemes)) {
        return Failed(result::HttpAuthQueryFailed, "AUTHENTICATION", error);
    }
    Log(logmask::kVerbatim, "%s", chosen->logLine);
    challenge = {chosen->scheme, true};
    next = Next::kRound;
    return result::Success;
}

ResultCode CKorHttp::ReadBody(const Timer& timer) {
    const std::size_t most = settings.largestBody;
    while (true) {
        std::size_t available = 0;
        std::uint32_t error = transport_->Available(available, timer.Remaining());
        if (error != http::kOk) return BodyFailure(result::HttpReadSizeFailed, timer, error);
        if (available == 0) return EndOfBody();
        std::string& body = reply_.body;
        const std::size_t old = body.size();
        if (old == most) break;
        body.resize(old + std::min({available, kPiece, most - old}));
        std::size_t count = 0;
        error = transport_->ReadBody(body.data() + old, body.size() - old, count);
        body.resize(old + std::min(count, body.size() - old));
        if (error != http::kOk) return BodyFailure(result::HttpReadFailed, timer, error);
        if (count == 0) return EndOfBody();
        if (timer.Expired()) return BodyFailure(result::HttpReadFailed, timer, http::kTimedOut);
    }
    Log(kEvent, "HTTP RESPONSE DATA  : longer than %ld bytes, the rest is left out\n",
        static_cast<long>(most));
    reply_.isWhole = false;
    transport_->CloseRequest();
    requestOpen_ = false;
    return result::Success;
}

// A connection that ends early looks like the end of the body.
ResultCode CKorHttp::EndOfBody() {
    const std::string announced = transport_->Read(http::Header::kContentLength);
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(announced.data(), announced.data() + announced.size(), length);
    if (error != std::errc() || reply_.body.size() >= length) return result::Success;
    Log(kEvent, "HTTP RESPONSE DATA  : incomplete\n");
    reply_.isWhole = false;
    return result::Success;
}

ResultCode CKorHttp::BodyFailure(ResultCode code, const Timer& timer, std::uint32_t error) {
    return Failed(timer.Expired() ? result::HttpConnectTimedOut : code, "READ", error);
}

// The status has decided already: what can be read of the reply is kept, and a failure only stands in the
// log.
void CKorHttp::ReadErrorBody(const Timer& timer) {
    if (!settings.keepErrorReplies) return;
    if (ReadBody(timer) != result::Success) Log(kEvent, "HTTP RESPONSE DATA  : incomplete\n");
}

ResultCode CKorHttp::Failed(ResultCode code, const char* what, std::uint32_t error) {
    systemError_ = error;
    if (error == http::kOk) {
        Log(logmask::kVerbatim, "HTTP ERROR          : %s\n", what);
        return code;
    }
    const std::string fault = transport_->CertificateFault();
    Log(logmask::kVerbatim, "HTTP ERROR          : %s, system error %ld%s%s\n", what,
        static_cast<long>(error), fault.empty() ? "" : ", ", fault.c_str());
    return code;
}

void CKorHttp::LogText(const char* format, const std::string& text) {
    if (!IsLogging()) return;
    std::string line(format);
    line.replace(line.find("%s"), 2, text);
    LogSized(logmask::kVerbatim, line.size() + kLineRoom, "%s", line.c_str());
}
