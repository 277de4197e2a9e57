// HTTP through WinHTTP, whose functions are looked up when the first client is made. WinHTTP's calls may last
// longer than any time set for them (a server that sends one octet a second keeps each wait short), so a
// thread makes them, and who has no time left goes without it.
#include "foundation/CodePage.h"
#include "foundation/http/HttpStatus.h"
#include "foundation/http/HttpTransport.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <system_error>
#include <thread>
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

// clang-format off
#define WINHTTP_FUNCTIONS(X)     \
    X(WinHttpOpen)               \
    X(WinHttpConnect)            \
    X(WinHttpOpenRequest)        \
    X(WinHttpSetCredentials)     \
    X(WinHttpSendRequest)        \
    X(WinHttpWriteData)          \
    X(WinHttpReceiveResponse)    \
    X(WinHttpQueryHeaders)       \
    X(WinHttpQueryDataAvailable) \
    X(WinHttpReadData)           \
    X(WinHttpQueryAuthSchemes)   \
    X(WinHttpSetOption)          \
    X(WinHttpSetTimeouts)        \
    X(WinHttpCloseHandle)
// clang-format on
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

// A handle of WinHTTP.
class InternetHandle {
  public:
    InternetHandle() = default;
    explicit InternetHandle(HINTERNET handle) : handle_(handle) {}
    InternetHandle(InternetHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    InternetHandle& operator=(InternetHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    InternetHandle(const InternetHandle&) = delete;
    InternetHandle& operator=(const InternetHandle&) = delete;
    ~InternetHandle() {
        if (handle_ != nullptr) WinHttp::Get().WinHttpCloseHandle(handle_);
    }

    HINTERNET get() const { return handle_; }
    HINTERNET Detach() { return std::exchange(handle_, nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HINTERNET handle_ = nullptr;
};

std::uint32_t LastError() {
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : ERROR_WINHTTP_INTERNAL_ERROR;
}
std::uint32_t Result(BOOL done) { return done ? http::kOk : LastError(); }

// Octets of a body that are handed over at once. Behind the first piece each next waits for the server's
// acknowledgement of the one before it, which takes its time: a message goes out in one.
constexpr DWORD kSendPiece = 1024 * 1024;
constexpr DWORD kReadPiece = 64 * 1024;
constexpr std::size_t kHeaders = 7;  // kinds of http::Header

// Where an exchange is: what waits for the server now.
enum class Phase { kSending, kReceiving, kReading, kDone };

struct Outgoing {
    std::wstring headers;
    std::string body;
    int limit = 0;  // ms for each wait; 0 = none
};

struct Response {
    std::uint32_t sendError = http::kOk, receiveError = http::kOk, statusError = http::kOk;
    std::uint32_t schemesError = http::kOk;
    DWORD status = 0;
    std::array<std::string, kHeaders> values;
    DWORD offered = 0;  // schemes
    DWORD faults = 0;   // of the server's certificate
};

// What was read last of a reply's body.
struct Piece {
    std::string octets;
    bool isLast = false;
    std::uint32_t sizeError = http::kOk, readError = http::kOk;

    bool MoreMayCome() const { return !isLast && sizeError == http::kOk && readError == http::kOk; }
};

// The session, its connection and its request, and the thread that waits for the server. Lives until both its
// owner and the thread have let go.
class Session {
  public:
    // What the thread does next.
    enum class Job { kNone, kExchange, kRead };

    // The thread's while a job is under way; of the response, only until the reading of the body.
    InternetHandle session, connection, request;
    Outgoing outgoing;
    Response response;
    Piece piece;

    static std::shared_ptr<Session> Start() {
        auto self = std::make_shared<Session>();
        try {
            std::thread([self] { self->Work(); }).detach();
        } catch (const std::system_error&) {
            return nullptr;
        }
        return self;
    }

    // False when the time was over first: the session must then not be used again.
    bool Run(Job job, std::uint32_t time) {
        AcquireSRWLockExclusive(&lock_);
        job_ = job;
        WakeAllConditionVariable(&changed_);
        const std::uint64_t start = GetTickCount64();
        bool isDone = false;
        while (!(isDone = job_ == Job::kNone)) {
            const std::uint64_t passed = GetTickCount64() - start;
            if (time != INFINITE && passed >= time) break;
            const DWORD left = time == INFINITE ? INFINITE : static_cast<DWORD>(time - passed);
            SleepConditionVariableSRW(&changed_, &lock_, left, 0);
        }
        ReleaseSRWLockExclusive(&lock_);
        return isDone;
    }
    // The thread goes when its present call returns, and the handles with it. Closing the request makes the
    // call return.
    void LetGo() {
        AcquireSRWLockExclusive(&lock_);
        isLetGo_ = true;
        if (job_ != Job::kNone) winHttp_.WinHttpCloseHandle(request.Detach());
        WakeAllConditionVariable(&changed_);
        ReleaseSRWLockExclusive(&lock_);
    }
    Phase Where() {
        AcquireSRWLockShared(&lock_);
        const Phase phase = phase_;
        ReleaseSRWLockShared(&lock_);
        return phase;
    }

    static void CALLBACK OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information, DWORD) {
        if (status != WINHTTP_CALLBACK_STATUS_SECURE_FAILURE || context == 0 || information == nullptr)
            return;
        reinterpret_cast<Session*>(context)->response.faults = *static_cast<DWORD*>(information);
    }

  private:
    void Work() {
        AcquireSRWLockExclusive(&lock_);
        while (true) {
            while (job_ == Job::kNone && !isLetGo_) {
                SleepConditionVariableSRW(&changed_, &lock_, INFINITE, 0);
            }
            if (isLetGo_) break;
            const Job job = job_;
            ReleaseSRWLockExclusive(&lock_);
            try {
                if (job == Job::kExchange) DoExchange();
                if (job == Job::kRead) ReadPiece();
            } catch (const std::bad_alloc&) {
                const Phase phase = Where();
                (phase == Phase::kSending     ? response.sendError
                 : phase == Phase::kReceiving ? response.receiveError
                                              : piece.readError) = ERROR_OUTOFMEMORY;
            }
            AcquireSRWLockExclusive(&lock_);
            job_ = Job::kNone;
            phase_ = Phase::kDone;
            WakeAllConditionVariable(&changed_);
        }
        ReleaseSRWLockExclusive(&lock_);
    }

    void Enter(Phase phase) {
        AcquireSRWLockExclusive(&lock_);
        phase_ = phase;
        ReleaseSRWLockExclusive(&lock_);
    }

    void DoExchange() {
        Enter(Phase::kSending);
        response.sendError = SendAll();
        if (response.sendError != http::kOk) return;
        Enter(Phase::kReceiving);
        response.receiveError = Result(winHttp_.WinHttpReceiveResponse(request.get(), nullptr));
        if (response.receiveError != http::kOk) return;
        ReadHeaders();
        // What will be asked for next is read at once, so that a short reply costs one change of threads.
        if (response.statusError != http::kOk ||
            StatusOf(response.status).action != HttpStatus::Action::kDone) {
            return;
        }
        Enter(Phase::kReading);
        ReadPiece();
    }

    std::uint32_t SendAll() {
        winHttp_.WinHttpSetTimeouts(request.get(), outgoing.limit, outgoing.limit, outgoing.limit,
                                    outgoing.limit);
        const std::wstring& lines = outgoing.headers;
        std::string& body = outgoing.body;
        const auto total = static_cast<DWORD>(body.size());
        const DWORD first = std::min(total, kSendPiece);
        std::uint32_t error = Result(winHttp_.WinHttpSendRequest(
            request.get(), lines.empty() ? WINHTTP_NO_ADDITIONAL_HEADERS : lines.c_str(),
            static_cast<DWORD>(lines.size()), first == 0 ? WINHTTP_NO_REQUEST_DATA : body.data(), first,
            total, reinterpret_cast<DWORD_PTR>(this)));
        for (DWORD sent = first; error == http::kOk && sent < total;) {
            DWORD written = 0;
            error = Result(winHttp_.WinHttpWriteData(request.get(), body.data() + sent,
                                                     std::min(total - sent, kSendPiece), &written));
            sent += written;
        }
        return error;
    }

    void ReadHeaders() {
        DWORD size = sizeof response.status;
        response.statusError = Result(winHttp_.WinHttpQueryHeaders(
            request.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
            WINHTTP_HEADER_NAME_BY_INDEX, &response.status, &size, WINHTTP_NO_HEADER_INDEX));
        static constexpr std::array<DWORD, kHeaders> kQueries{
            WINHTTP_QUERY_STATUS_TEXT,   WINHTTP_QUERY_VERSION,  WINHTTP_QUERY_SERVER,
            WINHTTP_QUERY_VIA,           WINHTTP_QUERY_LOCATION, WINHTTP_QUERY_CONTENT_TYPE,
            WINHTTP_QUERY_CONTENT_LENGTH};
        for (std::size_t i = 0; i < kHeaders; ++i) response.values[i] = ReadHeader(kQueries[i]);
        if (response.status != HTTP_STATUS_DENIED && response.status != HTTP_STATUS_PROXY_AUTH_REQ) return;
        DWORD first = 0;
        DWORD target = 0;
        response.schemesError =
            Result(winHttp_.WinHttpQueryAuthSchemes(request.get(), &response.offered, &first, &target));
    }

    std::string ReadHeader(DWORD query) {
        std::array<wchar_t, 256> room{};
        DWORD size = sizeof room;
        if (winHttp_.WinHttpQueryHeaders(request.get(), query, WINHTTP_HEADER_NAME_BY_INDEX, room.data(),
                                         &size, WINHTTP_NO_HEADER_INDEX)) {
            return Narrow({room.data(), size / sizeof(wchar_t)});
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return {};
        std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
        size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        if (!winHttp_.WinHttpQueryHeaders(request.get(), query, WINHTTP_HEADER_NAME_BY_INDEX, text.data(),
                                          &size, WINHTTP_NO_HEADER_INDEX)) {
            return {};
        }
        text.resize(size / sizeof(wchar_t));
        return Narrow(text);
    }

    // Until a piece is full or the body ends.
    void ReadPiece() {
        std::string& octets = piece.octets;
        octets.clear();
        while (!piece.isLast && octets.size() < kReadPiece) {
            DWORD available = 0;
            piece.sizeError = Result(winHttp_.WinHttpQueryDataAvailable(request.get(), &available));
            if (piece.sizeError != http::kOk) return;
            piece.isLast = available == 0;
            if (piece.isLast) return;
            const std::size_t old = octets.size();
            octets.resize(old + std::min<std::size_t>(available, kReadPiece - old));
            DWORD read = 0;
            piece.readError = Result(winHttp_.WinHttpReadData(
                request.get(), octets.data() + old, static_cast<DWORD>(octets.size() - old), &read));
            octets.resize(old + std::min<std::size_t>(read, octets.size() - old));
            piece.isLast = read == 0;
            if (piece.readError != http::kOk) return;
        }
    }

    const WinHttp& winHttp_ = WinHttp::Get();
    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE changed_ = CONDITION_VARIABLE_INIT;
    Job job_ = Job::kNone;
    Phase phase_ = Phase::kDone;
    bool isLetGo_ = false;
};

class WinHttpTransport final : public HttpTransport {
  public:
    ~WinHttpTransport() override { Close(); }

    bool IsLoaded() const override { return winHttp_.error == ERROR_SUCCESS; }
    const char* Library() const override { return WinHttp::kName; }
    std::uint32_t LoadError() const override { return winHttp_.error; }

    std::uint32_t OpenSession(const std::string& agent, const std::string& proxy) override {
        Close();
        session_ = Session::Start();
        if (session_ == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
        const bool direct = proxy.empty();
        session_->session = InternetHandle(winHttp_.WinHttpOpen(
            Wide(agent).c_str(), direct ? WINHTTP_ACCESS_TYPE_NO_PROXY : WINHTTP_ACCESS_TYPE_NAMED_PROXY,
            direct ? WINHTTP_NO_PROXY_NAME : WideText(proxy).c_str(), WINHTTP_NO_PROXY_BYPASS, 0));
        if (!session_->session) return LastError();
        if (winHttp_.WinHttpSetStatusCallback != nullptr) {
            winHttp_.WinHttpSetStatusCallback(session_->session.get(), &Session::OnStatus,
                                              WINHTTP_CALLBACK_FLAG_SECURE_FAILURE, 0);
        }
        return http::kOk;
    }

    std::uint32_t Connect(const std::string& host, std::uint16_t port) override {
        if (!IsOpen()) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
        if (session_->connection && host == host_ && port == port_) return http::kOk;
        CloseRequest();
        session_->connection =
            InternetHandle(winHttp_.WinHttpConnect(session_->session.get(), WideText(host).c_str(), port, 0));
        host_ = host;
        port_ = port;
        return session_->connection ? http::kOk : LastError();
    }

    std::uint32_t OpenRequest(const std::string& verb, const std::string& path, bool secure,
                              bool keepAlive) override {
        if (!IsOpen()) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
        const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | (secure ? WINHTTP_FLAG_SECURE : 0);
        InternetHandle request(winHttp_.WinHttpOpenRequest(session_->connection.get(), Wide(verb).c_str(),
                                                           Wide(path).c_str(), nullptr, WINHTTP_NO_REFERER,
                                                           WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
        if (!request) return LastError();
        SetOption(request, WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER);
        SetOption(request, WINHTTP_OPTION_AUTOLOGON_POLICY, WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
        SetOption(request, WINHTTP_OPTION_DISABLE_FEATURE,
                  WINHTTP_DISABLE_REDIRECTS | (keepAlive ? 0 : WINHTTP_DISABLE_KEEP_ALIVE));
        session_->request = std::move(request);
        return http::kOk;
    }

    std::uint32_t SetCredentials(http::Peer peer, http::Scheme scheme,
                                 const http::Account& account) override {
        if (!IsOpen()) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
        const DWORD target =
            peer == http::Peer::kProxy ? WINHTTP_AUTH_TARGET_PROXY : WINHTTP_AUTH_TARGET_SERVER;
        return Result(winHttp_.WinHttpSetCredentials(session_->request.get(), target, scheme,
                                                     WideText(account.name).c_str(),
                                                     WideText(account.password).c_str(), nullptr));
    }

    // The body is copied, since the thread may still be sending it when the time is over.
    std::uint32_t Send(const std::string& headers, std::string_view body, std::uint32_t time) override {
        if (!IsOpen()) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
        Outgoing& outgoing = session_->outgoing;
        outgoing.headers = Wide(headers);
        outgoing.body = body;
        outgoing.limit = time == INFINITE ? 0 : static_cast<int>(std::min<std::uint32_t>(time, MAXINT));
        session_->response = {};
        session_->piece = {};
        read_ = 0;
        Run(Session::Job::kExchange, time);
        return response_.sendError;
    }

    std::uint32_t Receive(std::uint32_t /*time*/) override { return response_.receiveError; }

    std::uint32_t Status(std::uint32_t& status) override {
        status = response_.status;
        return response_.statusError;
    }
    std::string Read(http::Header header) override {
        return response_.values[static_cast<std::size_t>(header)];
    }
    std::uint32_t QuerySchemes(std::uint32_t& offered) override {
        offered = response_.offered;
        return response_.schemesError;
    }

    // An error counts behind the octets that were read before it.
    std::uint32_t Available(std::size_t& count, std::uint32_t time) override {
        count = 0;
        if (IsOpen() && read_ == session_->piece.octets.size() && session_->piece.MoreMayCome()) {
            read_ = 0;
            Run(Session::Job::kRead, time);
        }
        if (!IsOpen()) return http::kTimedOut;
        const Piece& piece = session_->piece;
        count = piece.octets.size() - read_;
        if (count == 0 && piece.readError != http::kOk) count = 1;
        return count == 0 ? piece.sizeError : http::kOk;
    }
    std::uint32_t ReadBody(char* buffer, std::size_t size, std::size_t& count) override {
        count = 0;
        if (!IsOpen()) return http::kTimedOut;
        count = session_->piece.octets.copy(buffer, size, read_);
        read_ += count;
        return count == 0 ? session_->piece.readError : http::kOk;
    }

    void CloseRequest() override {
        if (session_ != nullptr) session_->request = {};
    }
    void Close() override {
        if (session_ != nullptr) std::exchange(session_, nullptr)->LetGo();
    }

    std::string CertificateFault() const override {
        std::string words;
        for (const FaultRow& row : kFaults) {
            if ((response_.faults & row.flag) == 0) continue;
            words += (words.empty() ? "" : ", ") + std::string(row.words);
        }
        return words;
    }

  private:
    bool IsOpen() const { return session_ != nullptr; }
    // When the time is over the session stays with its thread, which may hang in a call.
    void Run(Session::Job job, std::uint32_t time) {
        const bool isDone = session_->Run(job, time);
        const Phase phase = isDone ? Phase::kDone : session_->Where();
        response_ = phase >= Phase::kReading ? session_->response : Response{};
        if (phase == Phase::kSending) response_.sendError = http::kTimedOut;
        if (phase == Phase::kReceiving) response_.receiveError = http::kTimedOut;
        if (!isDone) Close();
    }
    void SetOption(const InternetHandle& handle, DWORD option, DWORD value) {
        winHttp_.WinHttpSetOption(handle.get(), option, &value, sizeof value);
    }

    const WinHttp& winHttp_ = WinHttp::Get();
    std::shared_ptr<Session> session_;
    std::string host_;
    std::uint16_t port_ = 0;
    Response response_;
    std::size_t read_ = 0;  // of the piece of the body that was read last
};

}  // namespace

std::unique_ptr<HttpTransport> NewHttpTransport() { return std::make_unique<WinHttpTransport>(); }
