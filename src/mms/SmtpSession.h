// One mail to a server, RFC 5321, over a stream that is connected. AUTH LOGIN as of its draft, after HELO.
#pragma once
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "foundation/net/ReplyDialogue.h"

#include <cstdint>
#include <string>
#include <string_view>

// Each step gives 0, or the code of the server's reply; 591 when none was heard. A reply without a code
// counts as none.
class SmtpSession {
  public:
    SmtpSession(Stream& stream, CKorBase& log);

    ResultCode Greet();
    ResultCode Hello(const std::string& name);  // 101 for every refusal
    // 137 when the server does not know how.
    ResultCode Login(const std::string& account, const std::string& password);
    ResultCode From(const std::string& address);
    ResultCode To(const std::string& address);
    // A mail of whole lines; those that begin with a dot get a second one.
    ResultCode Data(std::string_view mail);
    // Leaves the reply as it was.
    void Quit();

    // All lines of the last reply.
    const std::string& ReplyText() const { return replyText_; }

  private:
    std::int32_t Exchange(const std::string& line);
    std::int32_t Take(const Reply& reply);
    bool FindAnswer(const std::string& account, const std::string& password, std::string& answer,
                    std::string& shown) const;

    Stream* stream_;
    CKorBase* log_;
    ReplyDialogue dialogue_;
    std::string replyText_;
};
