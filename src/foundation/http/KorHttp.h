// The HTTP client of the system: one request at a time, with redirects, challenges, proxy and time-out.
#pragma once
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "foundation/http/HttpTransport.h"
#include "foundation/http/HttpUrl.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// What a caller sets; it holds for every request until it is changed.
struct HttpSettings {
    bool secure = false;         // HTTPS whatever scheme the URL names
    std::uint32_t timeout = 60;  // s for a whole request, with all its rounds
    bool keepAlive = true;       // whether connections are used again
    std::string proxy;           // "host:port"; empty = none
    http::Account proxyAccount;  // without a name, a proxy's challenge ends the request
    http::Account webAccount;
    // Lines that go with every round. A line "Host:" among them is of the URL's host: where a redirect leads
    // to another, the platform writes its own.
    std::string getHeaders;   // further lines of a GET
    std::string postHeaders;  // the content-type line of a POST, or several lines; empty = a form's
    std::string postText;     // the body of a POST; a request with none is a GET
    std::size_t largestBody = std::size_t{16} << 20;  // octets of a reply that are kept
    bool keepErrorReplies = false;  // whether replies of a status that is an error can be read as well
};

// What a request has left behind; all empty after one that failed.
struct HttpReply {
    std::uint32_t status = 0;
    std::string statusText;
    std::string version;  // of HTTP
    std::string server;
    std::string proxy;     // as the proxy identifies itself
    std::string location;  // where a redirect led
    std::string contentType;
    std::string body;
    bool isWhole = true;  // not when the server announced more octets than came or were kept
};

class CKorHttp final : public CKorBase {
  public:
    static constexpr const char* kUserAgent = "Mozilla/4.0 (compatible; Win32; Quorvane.Http.3.1)";
    static constexpr const char* kFormHeader = "Content-Type: application/x-www-form-urlencoded";

    explicit CKorHttp(Clock& clock = SystemClock(),
                      std::unique_ptr<HttpTransport> transport = NewHttpTransport());
    ~CKorHttp() override;

    HttpSettings settings;

    // A session and a connection for the URL, "[http[s]://]host[:port][/path]". Request does it by itself.
    // 0, 22390, 22401, 22404, 22426.
    ResultCode Open(const std::string& url);
    // The whole exchange. `body`, if given, goes out instead of `settings.postText`, and is not copied.
    // 0 also for a 407 without a proxy account; 22390 and any code of 22401 to 22449.
    ResultCode Request(const std::string& url, std::optional<std::string_view> body = {});
    void Close();

    const HttpReply& Reply() const { return reply_; }
    // Gives the reply away.
    HttpReply TakeReply();
    // The system error that the last failure came from; 0 when it was none of the system's.
    std::uint32_t SystemError() const { return systemError_; }

  private:
    struct Challenge {  // one peer's, and what is answered to it
        http::Scheme scheme = http::kNoScheme;
        bool answered = false;
    };
    enum class Next { kDone, kRound, kRepeat };

    ResultCode Exchange(const std::string& url, std::string_view body);
    ResultCode OpenUrl(const HttpUrl& url);
    ResultCode Round(std::string_view body, const Timer& timer, Next& next);
    ResultCode Answer(http::Peer peer, const Challenge& challenge);
    ResultCode SendRequest(std::string_view body, const Timer& timer, Next& next);
    ResultCode ReceiveReply(const Timer& timer, Next& next);
    bool AsksForResend(std::uint32_t error, Next& next);
    ResultCode ReadHeaders();
    void ReadHeader(http::Header header, std::string& text, const char* format);
    ResultCode Judge(const Timer& timer, Next& next);
    ResultCode Redirect(Next& next);
    ResultCode Choose(const http::Account& account, Challenge& challenge, ResultCode refused,
                      const Timer& timer, Next& next);
    ResultCode ReadBody(const Timer& timer);
    ResultCode EndOfBody();
    void ReadErrorBody(const Timer& timer);
    ResultCode BodyFailure(ResultCode code, const Timer& timer, std::uint32_t error);
    ResultCode Failed(ResultCode code, const char* what, std::uint32_t error);
    std::string Headers() const;
    void LogText(const char* format, const std::string& text);

    std::unique_ptr<HttpTransport> transport_;
    HttpUrl url_;
    std::string firstHost_;  // that of the URL that was asked for, before any redirect
    bool secure_ = false;
    bool sessionOpen_ = false;
    std::string sessionProxy_;
    bool requestOpen_ = false;
    bool isPost_ = false;
    std::uint32_t lastChallenge_ = 0;  // 401 or 407: what the last response was, if one of them
    std::uint32_t redirects_ = 0;
    std::uint32_t resends_ = 0;
    Challenge server_, proxy_;
    HttpReply reply_;
    std::uint32_t systemError_ = 0;
};
