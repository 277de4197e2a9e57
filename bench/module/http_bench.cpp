// Messages through the HTTP class of the registered module under Wine, beside a bare WinHTTP loop of the same
// requests: http_bench.exe PORT, with the port of a server that answers "OK ..." to POST and GET of /ok. A
// POST goes out in two pieces, so that both wait for the peer's delayed acknowledgement; a GET shows what the
// channel itself costs.
#include "Com.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>
#include <winhttp.h>

namespace {

constexpr int kRounds = 7;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// The least that posts: one session and one connection, a request for each message, its reply read to the
// end.
class BareLoop {
  public:
    BareLoop(INTERNET_PORT port, std::string body)
        : session_(::WinHttpOpen(L"bench", WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0)),
          connection_(::WinHttpConnect(session_, L"127.0.0.1", port, 0)),
          body_(std::move(body)) {}
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;
    ~BareLoop() {
        ::WinHttpCloseHandle(connection_);
        ::WinHttpCloseHandle(session_);
    }

    bool Post() {
        const HINTERNET request = ::WinHttpOpenRequest(connection_, body_.empty() ? L"GET" : L"POST", L"/ok",
                                                       nullptr, nullptr, nullptr, 0);
        const auto size = static_cast<DWORD>(body_.size());
        bool works =
            ::WinHttpSendRequest(request, body_.empty() ? nullptr : kForm,
                                 body_.empty() ? 0 : static_cast<DWORD>(-1), body_.data(), size, size, 0) &&
            ::WinHttpReceiveResponse(request, nullptr);
        char buffer[256];
        DWORD available = 0;
        while (works && ::WinHttpQueryDataAvailable(request, &available) && available > 0) {
            DWORD count = 0;
            works = ::WinHttpReadData(request, buffer, std::min<DWORD>(available, sizeof buffer), &count);
        }
        ::WinHttpCloseHandle(request);
        return works;
    }

  private:
    static constexpr const wchar_t* kForm = L"Content-Type: application/x-www-form-urlencoded";
    HINTERNET session_, connection_;
    std::string body_;
};

class Channel {
  public:
    Channel(int port, const std::wstring& urlTemplate) {
        http_->put_ProviderHost(Bstr(L"127.0.0.1"));
        http_->put_ProviderPort(port);
        http_->put_URLText(Bstr(urlTemplate));
        http_->put_ProviderSuccessResponse(Bstr(L"OK"));
        message_->put_Recipient(Bstr(L"+31612345678"));
        message_->put_Data(Bstr(std::wstring(160, L'x')));
    }
    bool Post() {
        LONG code = 0;
        http_->Send(&argument_);
        http_->get_LastError(&code);
        return code == 0;
    }

  private:
    Com<ISmsProtocolHttp> http_ = Create<ISmsProtocolHttp>(L"Quorvane.SmsProtocolHttp");
    Com<ISmsMessage> message_ = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    Variant argument_{message_.get()};
};

// Requests per second of one round; the program ends when one fails.
template <class Poster>
double Rate(Poster& poster, int requests) {
    const double start = Now();
    for (int i = 0; i < requests; ++i) {
        if (!poster.Post()) {
            std::printf("a request failed\n");
            std::exit(1);
        }
    }
    return requests / (Now() - start);
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void Compare(const char* name, BareLoop&& bare, Channel&& channel, int requests) {
    std::vector<double> bareRates, channelRates, ratios;
    for (int round = 0; round < kRounds; ++round) {
        bareRates.push_back(Rate(bare, requests));
        channelRates.push_back(Rate(channel, requests));
        ratios.push_back(channelRates.back() / bareRates.back());
    }
    std::printf("%s: channel %.0f/s, bare WinHTTP %.0f/s, ratio %.2f (medians of %d rounds)\n", name,
                Median(channelRates), Median(bareRates), Median(ratios), kRounds);
}

}  // namespace

int main(int argc, char** argv) {
    const ComApartment apartment;
    const int port = argc > 1 ? std::atoi(argv[1]) : 8080;
    const auto at = static_cast<INTERNET_PORT>(port);
    Compare("POST", {at, "to=%2B31612345678&text=" + std::string(160, 'x')},
            {port, L"ok?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%"}, 100);
    Compare("GET", {at, ""}, {port, L"ok"}, 1000);
    return 0;
}
