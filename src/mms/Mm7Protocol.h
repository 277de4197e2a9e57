// The MM7 channel: multimedia messages submitted to an MMS centre in SOAP over HTTP (3GPP TS 23.140). It
// sends only.
#pragma once
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "frame/VrmHttp.h"
#include "mms/Mm7Reply.h"
#include "mms/Mm7Settings.h"
#include "mms/MmsMessage.h"

#include <memory>
#include <string>
#include <vector>

class CMm7Protocol : public CVrmHttp {
  public:
    explicit CMm7Protocol(Clock& clock = SystemClock(),
                          std::unique_ptr<HttpTransport> transport = NewHttpTransport());

    Mm7Settings settings;

    void Clear();

    // Encodes the message and posts it from where it is encoded. 34141 for none, the codes of
    // CMmsMessage::Encode, 34133, those of CKorHttp::Request, and of the reply (Mm7Reply.h). A 500 with a
    // SOAP fault counts by what the fault says; 22405 for a proxy that asks for an account when there is
    // none.
    ResultCode Send(CMmsMessage* message);

    // What the centre said to the last message: the text of the status or fault; of a reply without either
    // all of it. And the message's id, when it was taken.
    const std::u16string& ProviderResponse() const { return providerResponse_; }
    const std::u16string& MessageId() const { return messageId_; }

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);

  private:
    std::vector<ProviderRow> ProviderRows();
    std::string Url() const;
    void Configure(const CMmsMessage& message);
    ResultCode Submit(CMmsMessage& message);
    ResultCode Judge(ResultCode requested, const HttpReply& http);
    void LogReply(const Mm7Reply& reply);

    std::u16string providerResponse_, messageId_;
};
