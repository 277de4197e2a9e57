// The MM4 channel: multimedia messages to a peer MMS server, as mails by SMTP, one connection a message. It
// sends only.
#pragma once
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "foundation/net/KorTcpSocket.h"
#include "frame/VrmBase.h"
#include "mms/MmsMessage.h"
#include "mms/SmtpSession.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct Mm4Settings {
    std::string host;
    std::int32_t port = 25;
    std::string account;  // empty = no AUTH
    std::string password;
    std::string domain;  // of addresses without "@"
    std::int32_t format = 0;
    std::int32_t version = mms::asMMS_VERSION_5_2_0;
};

class CMmsProtocolMm4 : public CVrmBase {
  public:
    static constexpr std::int32_t kLargestMessage = 350'000;  // octets

    explicit CMmsProtocolMm4(Clock& clock = SystemClock());
    CMmsProtocolMm4(std::unique_ptr<Stream> socket, Clock& clock);

    Mm4Settings settings;

    // Back to the state after construction.
    void Clear();

    // Octets, about, as parts hold them; what is above the largest is cut to it.
    std::int32_t MessageSizeLimit() const { return sizeLimit_; }
    void SetMessageSizeLimit(std::int32_t octets);

    // Encodes the message as MM4 and sends it. 0; the codes of its encoding; 34133 for one that is too large,
    // 34141 for none; 131 no host, 138 port 465, 22019 a port that is none; 10060, 22025 no connection; 101,
    // 137, 591 and replies of SMTP as results of the dialogue.
    ResultCode Send(CMmsMessage* message);

    // All lines of the server's last reply, but for that to QUIT.
    const std::string& ProviderResponse() const { return providerResponse_; }

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);

  private:
    std::vector<ProviderRow> ProviderRows();

    ResultCode Submit(CMmsMessage& message);
    ResultCode CheckSize(const std::string& mail);
    ResultCode CheckServer() const;
    ResultCode Connect();
    ResultCode LogIn(SmtpSession& server);
    ResultCode Deliver(SmtpSession& server, const CMmsMessage& message);
    ResultCode NameRecipients(SmtpSession& server, const CMmsMessage& message);
    std::string MailboxOf(std::string_view address) const;

    std::unique_ptr<Stream> socket_;
    std::int32_t sizeLimit_ = kLargestMessage;
    std::string providerResponse_;
};
