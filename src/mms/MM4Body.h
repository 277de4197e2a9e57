// Encodes a message as MM4 has it: a mail, its header fields as of 3GPP TS 23.140 section 8.4, its parts in
// base64.
#pragma once
#include "foundation/Clock.h"
#include "mms/MmsMessage.h"

#include <string>
#include <string_view>

class CMM4Body {
  public:
    // `now` in seconds since 1970.
    CMM4Body(const CMmsMessage& message, Clock& clock, std::int64_t now)
        : message_(message), clock_(&clock), now_(now) {}

    // The mail in `out`, whose memory is used again. The boundary is to stand in no part.
    void Encode(std::string& out, const std::string& boundary) const;

  private:
    std::size_t Size() const;
    void WriteHeader(std::string& out, std::string_view boundary) const;
    void WriteReports(std::string& out) const;
    void WriteAddresses(std::string& out) const;

    const CMmsMessage& message_;
    Clock* clock_;
    std::int64_t now_;
};

namespace mms {

// As mails show it; "unknown" for none.
std::string SenderOf(const CMmsMessage& message);

}  // namespace mms
