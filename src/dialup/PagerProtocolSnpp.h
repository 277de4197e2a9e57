// Pages through a paging server: the Simple Network Paging Protocol, RFC 1861, one connection a page.
#pragma once
#include "dialup/PagerMessageX.h"
#include "foundation/ResultCode.h"
#include "foundation/net/KorTcpSocket.h"
#include "foundation/net/ReplyDialogue.h"
#include "frame/VrmBase.h"

#include <cstdint>
#include <memory>
#include <string>

struct SnppSettings {
    std::string server;
    std::int32_t serverPort = 444;
    std::int32_t serverTimeout = 20'000;  // ms for each reply
    std::string providerPassword;         // empty = no login
};

class CPagerProtocolSnpp : public CVrmBase {
  public:
    explicit CPagerProtocolSnpp(Clock& clock = SystemClock());
    CPagerProtocolSnpp(std::unique_ptr<Stream> socket, Clock& clock);

    SnppSettings settings;

    // Back to the state after construction.
    void Clear();

    // Delivers one page. 0; 10053, 10054, 10060 and 22025 for the connection, 22019 a port that is none;
    // 33600 no server, 33603 an empty text or a page that the server refuses, 33610 another refusal, 33611 no
    // reply in time, 34031 a recipient that cannot be dialled.
    ResultCode Send(const CPagerMessageX& message);

    // The text of the last reply, without its number.
    const std::string& ProviderResponse() const { return providerResponse_; }

  private:
    ResultCode Check(const CPagerMessageX& message) const;
    ResultCode Connect();
    ResultCode Deliver(ReplyDialogue& server, const CPagerMessageX& message);
    ResultCode Login(ReplyDialogue& server);
    ResultCode SendText(ReplyDialogue& server, const std::string& text);
    void End(ReplyDialogue& server);
    ReplyTimes Times() const;
    ResultCode Judge(const Reply& reply);
    ResultCode Outcome(int outcome);

    std::unique_ptr<Stream> socket_;
    bool isLost_ = false;  // the server has ended the connection
    std::string providerResponse_;
};
