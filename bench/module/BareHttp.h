// A bare WinHTTP loop, and the comparison of a channel with it in the same run.
#pragma once
#include "Com.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>
#include <winhttp.h>

// The least that asks: one session and one connection, a request for each message, its reply read to the end.
// A loop without a body gets.
class BareLoop {
  public:
    BareLoop(INTERNET_PORT port, std::wstring path, std::wstring header, std::string body)
        : session_(::WinHttpOpen(L"bench", WINHTTP_ACCESS_TYPE_NO_PROXY, nullptr, nullptr, 0)),
          connection_(::WinHttpConnect(session_, L"127.0.0.1", port, 0)),
          path_(std::move(path)),
          header_(std::move(header)),
          body_(std::move(body)) {}
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;
    ~BareLoop() {
        ::WinHttpCloseHandle(connection_);
        ::WinHttpCloseHandle(session_);
    }

    bool Post() {
        const HINTERNET request = ::WinHttpOpenRequest(connection_, body_.empty() ? L"GET" : L"POST",
                                                       path_.c_str(), nullptr, nullptr, nullptr, 0);
        const auto size = static_cast<DWORD>(body_.size());
        bool works =
            ::WinHttpSendRequest(request, body_.empty() ? nullptr : header_.c_str(),
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
    HINTERNET session_, connection_;
    std::wstring path_, header_;
    std::string body_;
};

namespace bare {

inline constexpr int kRounds = 7;

inline double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

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

inline double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// Both go one round before what counts.
template <class Channel>
void Compare(const char* name, BareLoop&& loop, Channel&& channel, int requests) {
    std::vector<double> bareRates, channelRates, ratios;
    (void)Rate(loop, 1);
    (void)Rate(channel, 1);
    for (int round = 0; round < kRounds; ++round) {
        bareRates.push_back(Rate(loop, requests));
        channelRates.push_back(Rate(channel, requests));
        ratios.push_back(channelRates.back() / bareRates.back());
    }
    std::printf("%s: channel %.0f/s, bare WinHTTP %.0f/s, ratio %.2f (medians of %d rounds)\n", name,
                Median(channelRates), Median(bareRates), Median(ratios), kRounds);
}

}  // namespace bare
