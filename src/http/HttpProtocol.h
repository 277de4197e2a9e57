// The HTTP channel: one SMS through a provider's HTTP gateway. It sends only.
#pragma once
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "frame/VrmHttp.h"
#include "http/HttpProviderSettings.h"
#include "http/HttpTemplate.h"
#include "sms/SmsMessageX.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CHttpProtocol : public CVrmHttp {
  public:
    explicit CHttpProtocol(Clock& clock = SystemClock(),
                           std::unique_ptr<HttpTransport> transport = NewHttpTransport());

    HttpProviderSettings settings;

    void Clear();

    // Sends the message and judges the provider's reply. The codes of BuildHttpRequest, CKorHttp::Request and
    // JudgeHttpReply.
    ResultCode Send(const CSmsMessageX& message);

    // The text of the last reply; empty when there was none.
    const std::string& ProviderResponse() const { return providerResponse_; }

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);

  private:
    std::vector<ProviderRow> ProviderRows();

    ResultCode Submit(const CSmsMessageX& message);
    ResultCode Post(HttpRequest request);
    void Configure(std::string body);
    bool IsSecure(const std::string& url) const;
    void LogSubmit(const CSmsMessageX& message);
    void LogTemplates();
    void LogText(unsigned mask, const char* format, const std::string& text);

    std::string providerResponse_;
};
