// What the HTTP client needs of the platform: one session, one connection and one request at a time, each
// with its own set of functions behind it (`HttpTransportWin`). Tests put a scripted one in its place.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class CKorBase;

namespace http {

// System errors that the client tells apart; every other number is just an error.
inline constexpr std::uint32_t kOk = 0;
inline constexpr std::uint32_t kFunctionMissing = 127;  // of a library that is there
inline constexpr std::uint32_t kTimedOut = 12002;
inline constexpr std::uint32_t kNameNotResolved = 12007;
inline constexpr std::uint32_t kLoginFailure = 12015;
inline constexpr std::uint32_t kCannotConnect = 12029;
inline constexpr std::uint32_t kResendRequest = 12032;
inline constexpr std::uint32_t kSecureFailure = 12175;

enum class Peer { kServer, kProxy };

// Ways to prove an account; the values combine to a set.
enum Scheme : std::uint32_t {
    kNoScheme = 0,
    kBasic = 1,
    kNtlm = 2,
    kPassport = 4,
    kDigest = 8,
    kNegotiate = 16
};

// What is asked of a response.
enum class Header { kStatusText, kVersion, kServer, kProxy, kLocation, kContentType, kContentLength };

struct Account {
    std::string name;
    std::string password;
};

}  // namespace http

// Every operation gives 0 or a system error. Times are in ms, what is left of the whole exchange: an
// operation that takes longer is ended, whatever the server does, and gives kTimedOut.
class HttpTransport {
  public:
    HttpTransport() = default;
    HttpTransport(const HttpTransport&) = delete;
    HttpTransport& operator=(const HttpTransport&) = delete;
    virtual ~HttpTransport() = default;

    // Whether the platform's functions are there. When they are not: the library that lacks and the error.
    virtual bool IsLoaded() const = 0;
    virtual const char* Library() const = 0;
    virtual std::uint32_t LoadError() const = 0;

    // `proxy`: "host:port" or empty.
    virtual std::uint32_t OpenSession(const std::string& agent, const std::string& proxy) = 0;
    virtual std::uint32_t Connect(const std::string& host, std::uint16_t port) = 0;
    // A request follows no redirects and answers no challenge with the credentials of who is logged on.
    virtual std::uint32_t OpenRequest(const std::string& verb, const std::string& path, bool secure,
                                      bool keepAlive) = 0;

    virtual std::uint32_t SetCredentials(http::Peer peer, http::Scheme scheme,
                                         const http::Account& account) = 0;
    // May be called again on the same request. `headers`: lines with their ends, the last one's may be
    // missing.
    virtual std::uint32_t Send(const std::string& headers, std::string_view body, std::uint32_t time) = 0;
    virtual std::uint32_t Receive(std::uint32_t time) = 0;

    virtual std::uint32_t Status(std::uint32_t& status) = 0;
    // Empty when the response has none.
    virtual std::string Read(http::Header header) = 0;
    virtual std::uint32_t QuerySchemes(std::uint32_t& offered) = 0;

    // The octets of the body that can be read now; 0 at its end.
    virtual std::uint32_t Available(std::size_t& count, std::uint32_t time) = 0;
    virtual std::uint32_t ReadBody(char* buffer, std::size_t size, std::size_t& count) = 0;

    virtual void CloseRequest() = 0;
    // The connection and the session as well.
    virtual void Close() = 0;

    // What was wrong with the server's certificate, in words; empty when that is not known.
    virtual std::string CertificateFault() const = 0;
};

// The platform's own.
std::unique_ptr<HttpTransport> NewHttpTransport();
