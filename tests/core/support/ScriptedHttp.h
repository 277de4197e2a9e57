// The server, or proxy, behind the HTTP client in virtual time: a row for each round, and what was asked in
// each.
#pragma once
#include "foundation/http/HttpTransport.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What the tests set up and look at; it outlives the client.
struct HttpScript {
    struct Round {
        std::uint32_t status = 200;
        std::string body;
        std::map<http::Header, std::string> headers;
        std::uint32_t offered = http::kBasic;  // schemes of a challenge

        std::uint32_t sendError = 0, receiveError = 0, statusError = 0, schemesError = 0;
        std::uint32_t sendTime = 0, receiveTime = 0;  // ms
        std::uint32_t pieceTime = 0;                  // ms until each next piece of the body
        std::size_t piece = 1'000'000;                // octets of the body at a time
        std::size_t availableFailsAt = SIZE_MAX, readFailsAt = SIZE_MAX;  // octets of the body
    };

    explicit HttpScript(VirtualClock& clock, std::vector<Round> rounds = {})
        : clock(&clock), rounds(rounds.begin(), rounds.end()) {}

    VirtualClock* clock;
    std::deque<Round> rounds;  // the last one is played for ever
    std::uint32_t loadError = 0, openError = 0, connectError = 0, requestError = 0, credentialsError = 0;
    std::string certificateFault;

    // "POST http://host:80/path", "Content-Type: ...", the body, for each round.
    struct Asked {
        std::string line, headers, body;
        bool operator==(const Asked&) const = default;
    };
    std::vector<Asked> asked;
    std::vector<std::uint32_t> askedAt;    // ticks
    std::vector<std::string> credentials;  // "server 1 name:password", for each time they were given
    std::vector<std::string> sessions;     // "agent proxy"
    std::uint32_t requestsOpened = 0;
    bool keptAlive = false;
};

class ScriptedHttp final : public HttpTransport {
  public:
    explicit ScriptedHttp(HttpScript& script) : script_(&script) {}

    bool IsLoaded() const override { return script_->loadError == 0; }
    const char* Library() const override { return "winhttp.dll"; }
    std::uint32_t LoadError() const override { return script_->loadError; }

    std::uint32_t OpenSession(const std::string& agent, const std::string& proxy) override {
        script_->sessions.push_back(agent + " " + proxy);
        return script_->openError;
    }
    std::uint32_t Connect(const std::string& host, std::uint16_t port) override {
        server_ = host + ":" + std::to_string(port);
        return script_->connectError;
    }
    std::uint32_t OpenRequest(const std::string& verb, const std::string& path, bool secure,
                              bool keepAlive) override {
        EXPECT_FALSE(isOpen_) << "two requests at a time";
        line_ = verb + (secure ? " https://" : " http://") + server_ + path;
        isOpen_ = script_->requestError == 0;
        script_->keptAlive = keepAlive;
        ++script_->requestsOpened;
        return script_->requestError;
    }
    std::uint32_t SetCredentials(http::Peer peer, http::Scheme scheme,
                                 const http::Account& account) override {
        script_->credentials.push_back((peer == http::Peer::kProxy ? "proxy " : "server ") +
                                       std::to_string(scheme) + " " + account.name + ":" + account.password);
        return script_->credentialsError;
    }
    std::uint32_t Send(const std::string& headers, std::string_view body, std::uint32_t time) override {
        EXPECT_TRUE(isOpen_);
        script_->asked.push_back({line_, headers, std::string(body)});
        script_->askedAt.push_back(script_->clock->Ticks());
        if (played_ && script_->rounds.size() > 1) script_->rounds.pop_front();
        played_ = true;
        read_ = 0;
        return Take(Now().sendTime, time, Now().sendError);
    }
    std::uint32_t Receive(std::uint32_t time) override {
        return Take(Now().receiveTime, time, Now().receiveError);
    }
    std::uint32_t Status(std::uint32_t& status) override {
        status = Now().status;
        return Now().statusError;
    }
    std::string Read(http::Header header) override {
        const auto found = Now().headers.find(header);
        return found == Now().headers.end() ? std::string() : found->second;
    }
    std::uint32_t QuerySchemes(std::uint32_t& offered) override {
        offered = Now().offered;
        return Now().schemesError;
    }
    std::uint32_t Available(std::size_t& count, std::uint32_t time) override {
        count = std::min(Now().piece, Now().body.size() - read_);
        return Take(count == 0 ? 0 : Now().pieceTime, time, read_ >= Now().availableFailsAt ? kReset : 0);
    }
    std::uint32_t ReadBody(char* buffer, std::size_t size, std::size_t& count) override {
        count = Now().body.copy(buffer, std::min(size, Now().piece), read_);
        read_ += count;
        return read_ > Now().readFailsAt ? kReset : 0;
    }
    void CloseRequest() override { isOpen_ = false; }
    void Close() override { isOpen_ = false; }
    std::string CertificateFault() const override { return script_->certificateFault; }

  private:
    static constexpr std::uint32_t kReset = 12030;

    const HttpScript::Round& Now() const { return script_->rounds.front(); }
    std::uint32_t Take(std::uint32_t takes, std::uint32_t time, std::uint32_t error) {
        script_->clock->Sleep(std::min(takes, time));
        return takes >= time ? http::kTimedOut : error;
    }

    HttpScript* script_;
    std::string server_, line_;
    std::size_t read_ = 0;
    bool isOpen_ = false;
    bool played_ = false;  // the first round is under way
};
