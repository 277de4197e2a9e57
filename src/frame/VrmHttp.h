// The base of channels that go over HTTP: the client writes into the same files and hides the same passwords.
#pragma once
#include "foundation/http/KorHttp.h"
#include "frame/VrmBase.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CVrmHttp : public CVrmBase {
  public:
    void SetLogFile(const std::string& name) override;
    void SetActivityFile(const std::string& name) override;
    void HidePasswords(std::vector<std::string> passwords) override;

  protected:
    CVrmHttp(std::string className, Clock& clock, std::unique_ptr<HttpTransport> transport);

    // Closes the connection; files and advanced settings are none again.
    void ClearHttp();

    // An empty server is none; port 0 is that which the server's text names, else 80.
    void SetProxy(const std::string& server, std::int32_t port, http::Account account);
    // Longest time of one request.
    void SetTimeout(std::int64_t seconds);
    // "HttpKeepAlive" of the advanced settings, which is on.
    void SetKeepAlive();

    CKorHttp http_;
};
