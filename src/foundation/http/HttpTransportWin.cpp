// HTTP through WinHTTP, whose functions are looked up when the first client is made.
#include "foundation/CodePage.h"
#include "foundation/http/HttpTransport.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>
#include <windows.h>
#include <winhttp.h>

namespace {

std::wstring Wide(std::string_view octets) {
    std::wstring text;
    text.reserve(octets.size());
    for (const char c : octets) text += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return text;
}

std::wstring WideText(const std::string& ansi) {
    const std::u16string text = FromAnsi(ansi);
    return {text.begin(), text.end()};
}

std::string Narrow(std::wstring_view text) {
    std::string octets;
    octets.reserve(text.size());
    for (const wchar_t c : text) octets += c < 256 ? static_cast<char>(c) : '?';
    return octets;
}

// The functions of winhttp.dll. The library stays loaded.
class WinHttp {
  public:
    static const WinHttp& Get() {
        static const WinHttp library;
        return library;
    }

    static constexpr const char* kName = "winhttp.dll";
    DWORD error = ERROR_SUCCESS;  // why the library cannot be used

#define WINHTTP_FUNCTIONS(X)                                                                              \
    X(WinHttpOpen)                                                                                        \
    X(WinHttpConnect) X(WinHttpOpenRequest) X(WinHttpSetCredentials) X(WinHttpSendRequest)                \
        X(WinHttpWriteData) X(WinHttpReceiveResponse) X(WinHttpQueryHeaders) X(WinHttpQueryDataAvailable) \
            X(WinHttpReadData) X(WinHttpQueryAuthSchemes) X(WinHttpSetOption) X(WinHttpSetTimeouts)       \
                X(WinHttpCloseHandle)
#define WINHTTP_POINTER(name) decltype(&::name) name = nullptr;
    WINHTTP_FUNCTIONS(WINHTTP_POINTER)
    WINHTTP_POINTER(WinHttpSetStatusCallback)  // may be missing: tells what is wrong with a certificate
#undef WINHTTP_POINTER

  private:
    WinHttp() {
        const HMODULE library = LoadLibraryA(kName);
        if (library == nullptr) {
            error = GetLastError();
            return;
        }
#define WINHTTP_RESOLVE(name) Resolve(library, #name, name);
        WinHttpSetStatusCallback = reinterpret_cast<decltype(WinHttpSetStatusCallback)>(
            reinterpret_cast<void*>(GetProcAddress(library, "WinHttpSetStatusCallback")));
        WINHTTP_FUNCTIONS(WINHTTP_RESOLVE)
#undef WINHTTP_RESOLVE
#undef WINHTTP_FUNCTIONS
    }

    template <class Function>
    void Resolve(HMODULE library, const char* name, Function& function) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
        if (function == nullptr) error = GetLastError();
    }
};

struct FaultRow {
    DWORD flag;
    const char* words;
};
constexpr FaultRow kFaults[] = {
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED, "revocation could not be checked"},
    {WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CERT, "the certificate is invalid"},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED, "the certificate was revoked"},
    {WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA, "the certificate's authority is not trusted"},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID, "the certificate is for another host"},
    {WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID, "the certificate is out of date"},
    {WINHTTP_CALLBACK_STATUS_FLAG_SECURITY_CHANNEL_ERROR, "the secure channel failed"},
};

// A request's handle, which is closed when the time is over: that ends whatever waits on it. The timer is
// only set when none runs that is due in time, since every request sets its time anew.
class TimedRequest {
  public:
    TimedRequest() : timer_(CreateThreadpoolTimer(&OnTimer, this, nullptr)) {}
    TimedRequest(const TimedRequest&) = delete;
    TimedRequest& operator=(const TimedRequest&) = delete;
    ~TimedRequest() {
        Close();
        if (timer_ == nullptr) return;
        SetThreadpoolTimer(timer_, nullptr, 0, 0);
        WaitForThreadpoolTimerCallbacks(timer_, TRUE);
        CloseThreadpoolTimer(timer_);
    }

    void Set(HINTERNET handle) {
        Close();
        const std::scoped_lock guard(lock_);
        handle_ = handle;
        wasEnded_ = false;
    }
    void Close() {
        const std::scoped_lock guard(lock_);
        deadline_ = kNever;
        CloseHandle();
    }
    HINTERNET Handle() const {
        const std::scoped_lock guard(lock_);
        return handle_;
    }
    bool WasEnded() const {
        const std::scoped_lock guard(lock_);
        return wasEnded_;
    }
    // `time` in ms from now.
    void EndAfter(std::uint32_t time) {
        if (time == INFINITE) return;
        const std::scoped_lock guard(lock_);
        deadline_ = GetTickCount64() + time;
        if (deadline_ < due_) Arm();
    }

  private:
    static constexpr std::uint64_t kNever = ~std::uint64_t{0};

    static void CALLBACK OnTimer(PTP_CALLBACK_INSTANCE, void* self, PTP_TIMER) {
        auto& request = *static_cast<TimedRequest*>(self);
        const std::scoped_lock guard(request.lock_);
        request.due_ = kNever;
        if (request.deadline_ == kNever) return;
        if (GetTickCount64() < request.deadline_) return request.Arm();
        request.deadline_ = kNever;
        request.wasEnded_ = request.handle_ != nullptr;
        request.CloseHandle();
    }
    void Arm() {
        if (timer_ == nullptr) return;
        due_ = deadline_;
        const std::uint64_t now = GetTickCount64();
        const auto wait = static_cast<std::int64_t>(deadline_ > now ? deadline_ - now : 0) * 10'000;
        ULARGE_INTEGER relative{};
        relative.QuadPart = static_cast<std::uint64_t>(-wait);
        FILETIME time{relative.LowPart, relative.HighPart};
        SetThreadpoolTimer(timer_, &time, 0, 0);
    }
    void CloseHandle() {
        if (handle_ != nullptr) WinHttp::Get().WinHttpCloseHandle(std::exchange(handle_, nullptr));
    }

    mutable std::mutex lock_;
    PTP_TIMER timer_;
    HINTERNET handle_ = nullptr;
    std::uint64_t deadline_ = kNever;  // of the request, in ticks
    std::uint64_t due_ = kNever;       // of the timer
    bool wasEnded_ = false;
};

class WinHttpTransport final : public HttpTransport {
  public:
    ~WinHttpTransport() override { Close(); }

    bool IsLoaded() const override { return winHttp_.error == ERROR_SUCCESS; }
    const char* Library() const override { return WinHttp::kName; }
    std::uint32_t LoadError() const override { return winHttp_.error; }

    std::uint32_t OpenSession(const std::string& agent, const std::string& proxy) override {
        Close();
        const bool direct = proxy.empty();
        session_ = winHttp_.WinHttpOpen(
            Wide(agent).c_str(), direct ? WINHTTP_ACCESS_TYPE_NO_PROXY : WINHTTP_ACCESS_TYPE_NAMED_PROXY,
            direct ? WINHTTP_NO_PROXY_NAME : WideText(proxy).c_str(), WINHTTP_NO_PROXY_BYPASS, 0);
        if (session_ == nullptr) return LastError();
        if (winHttp_.WinHttpSetStatusCallback != nullptr) {
            winHttp_.WinHttpSetStatusCallback(session_, &OnStatus, WINHTTP_CALLBACK_FLAG_SECURE_FAILURE, 0);
        }
        return http::kOk;
    }

    std::uint32_t Connect(const std::string& host, std::uint16_t port) override {
        if (connection_ != nullptr && host == host_ && port == port_) return http::kOk;
        CloseRequest();
        CloseHandle(connection_);
        connection_ = winHttp_.WinHttpConnect(session_, WideText(host).c_str(), port, 0);
        host_ = host;
        port_ = port;
        return connection_ != nullptr ? http::kOk : LastError();
    }

    std::uint32_t OpenRequest(const std::string& verb, const std::string& path, bool secure,
                              bool keepAlive) override {
        const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | (secure ? WINHTTP_FLAG_SECURE : 0);
        const HINTERNET request =
            winHttp_.WinHttpOpenRequest(connection_, Wide(verb).c_str(), Wide(path).c_str(), nullptr,
                                        WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags);
        if (request == nullptr) return LastError();
        SetOption(request, WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER);
        SetOption(request, WINHTTP_OPTION_AUTOLOGON_POLICY, WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
        SetOption(request, WINHTTP_OPTION_DISABLE_FEATURE,
                  WINHTTP_DISABLE_REDIRECTS | (keepAlive ? 0 : WINHTTP_DISABLE_KEEP_ALIVE));
        request_.Set(request);
        return http::kOk;
    }

    std::uint32_t SetCredentials(http::Peer peer, http::Scheme scheme,
                                 const http::Account& account) override {
        const DWORD target =
            peer == http::Peer::kProxy ? WINHTTP_AUTH_TARGET_PROXY : WINHTTP_AUTH_TARGET_SERVER;
        return Result(winHttp_.WinHttpSetCredentials(request_.Handle(), target, scheme,
                                                     WideText(account.name).c_str(),
                                                     WideText(account.password).c_str(), nullptr));
    }

    std::uint32_t Send(const std::string& headers, std::string_view body, std::uint32_t time) override {
        const HINTERNET request = request_.Handle();
        faults_ = 0;
        // The platform's limits hold for each step; the timer holds for all.
        const int limit = time == INFINITE ? 0 : static_cast<int>(std::min<std::uint32_t>(time, MAXINT));
        winHttp_.WinHttpSetTimeouts(request, limit, limit, limit, limit);
        request_.EndAfter(time);
        const std::wstring lines = Wide(headers);
        const auto total = static_cast<DWORD>(body.size());
        const DWORD first = std::min<DWORD>(total, kPiece);
        std::uint32_t error = Result(winHttp_.WinHttpSendRequest(
            request, lines.empty() ? WINHTTP_NO_ADDITIONAL_HEADERS : lines.c_str(),
            static_cast<DWORD>(lines.size()),
            first == 0 ? WINHTTP_NO_REQUEST_DATA : const_cast<char*>(body.data()), first, total,
            reinterpret_cast<DWORD_PTR>(this)));
        for (DWORD sent = first; error == http::kOk && sent < total;) {
            DWORD written = 0;
            error = Result(winHttp_.WinHttpWriteData(request, body.data() + sent,
                                                     std::min<DWORD>(total - sent, kPiece), &written));
            sent += written;
        }
        return error;
    }

    std::uint32_t Receive(std::uint32_t time) override {
        request_.EndAfter(time);
        return Result(winHttp_.WinHttpReceiveResponse(request_.Handle(), nullptr));
    }

    std::uint32_t Status(std::uint32_t& status) override {
        DWORD value = 0;
        DWORD size = sizeof value;
        const BOOL done = winHttp_.WinHttpQueryHeaders(
            request_.Handle(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
            WINHTTP_HEADER_NAME_BY_INDEX, &value, &size, WINHTTP_NO_HEADER_INDEX);
        status = value;
        return Result(done);
    }

    std::string Read(http::Header header) override {
        static constexpr DWORD kQueries[] = {WINHTTP_QUERY_STATUS_TEXT, WINHTTP_QUERY_VERSION,
                                             WINHTTP_QUERY_SERVER, WINHTTP_QUERY_VIA, WINHTTP_QUERY_LOCATION};
        const DWORD query = kQueries[static_cast<std::size_t>(header)];
        const HINTERNET request = request_.Handle();
        DWORD size = 0;
        winHttp_.WinHttpQueryHeaders(request, query, WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &size,
                                     WINHTTP_NO_HEADER_INDEX);
        if (size == 0) return {};
        std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
        size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        if (!winHttp_.WinHttpQueryHeaders(request, query, WINHTTP_HEADER_NAME_BY_INDEX, text.data(), &size,
                                          WINHTTP_NO_HEADER_INDEX)) {
            return {};
        }
        text.resize(size / sizeof(wchar_t));
        return Narrow(text);
    }

    std::uint32_t QuerySchemes(std::uint32_t& offered) override {
        DWORD supported = 0;
        DWORD first = 0;
        DWORD target = 0;
        const BOOL done = winHttp_.WinHttpQueryAuthSchemes(request_.Handle(), &supported, &first, &target);
        offered = supported;
        return Result(done);
    }

    std::uint32_t Available(std::size_t& count, std::uint32_t time) override {
        request_.EndAfter(time);
        DWORD available = 0;
        const BOOL done = winHttp_.WinHttpQueryDataAvailable(request_.Handle(), &available);
        count = available;
        return Result(done);
    }

    std::uint32_t ReadBody(char* buffer, std::size_t size, std::size_t& count) override {
        DWORD read = 0;
        const BOOL done =
            winHttp_.WinHttpReadData(request_.Handle(), buffer, static_cast<DWORD>(size), &read);
        count = read;
        return Result(done);
    }

    void CloseRequest() override { request_.Close(); }
    void Close() override {
        CloseRequest();
        CloseHandle(connection_);
        CloseHandle(session_);
    }

    std::string CertificateFault() const override {
        std::string words;
        for (const FaultRow& row : kFaults) {
            if ((faults_ & row.flag) != 0) words += (words.empty() ? "" : ", ") + std::string(row.words);
        }
        return words;
    }

  private:
    static constexpr DWORD kPiece = 64 * 1024;  // octets of a body that are handed over at once

    static void CALLBACK OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information, DWORD) {
        if (status != WINHTTP_CALLBACK_STATUS_SECURE_FAILURE || context == 0 || information == nullptr)
            return;
        reinterpret_cast<WinHttpTransport*>(context)->faults_ = *static_cast<DWORD*>(information);
    }

    static std::uint32_t LastError() {
        const DWORD error = GetLastError();
        return error != ERROR_SUCCESS ? error : ERROR_WINHTTP_INTERNAL_ERROR;
    }
    std::uint32_t Result(BOOL done) const {
        if (done) return http::kOk;
        const std::uint32_t error = LastError();
        return request_.WasEnded() ? http::kTimedOut : error;
    }
    void SetOption(HINTERNET handle, DWORD option, DWORD value) {
        winHttp_.WinHttpSetOption(handle, option, &value, sizeof value);
    }
    void CloseHandle(HINTERNET& handle) {
        if (handle != nullptr) winHttp_.WinHttpCloseHandle(std::exchange(handle, nullptr));
    }

    const WinHttp& winHttp_ = WinHttp::Get();
    HINTERNET session_ = nullptr;
    HINTERNET connection_ = nullptr;
    std::string host_;
    std::uint16_t port_ = 0;
    TimedRequest request_;
    DWORD faults_ = 0;  // of the server's certificate
};

}  // namespace

std::unique_ptr<HttpTransport> NewHttpTransport() { return std::make_unique<WinHttpTransport>(); }
