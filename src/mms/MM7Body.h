// Encodes a message as MM7 has it (3GPP TS 23.140): a SOAP envelope and the parts, in a multipart that is
// posted over HTTP.
#pragma once
#include "foundation/ResultCode.h"
#include "mms/MmsMessage.h"

#include <cstdint>
#include <string>

class CMM7Body {
  public:
    // `now` in seconds since 1970.
    CMM7Body(const CMmsMessage& message, std::int64_t now);

    // 0, the body in `out`, whose memory is used again, and in `headers` the lines that the request needs
    // besides; or 34134 for a subject of more than 40 characters, and both stay as they are.
    ResultCode Encode(std::string& out, std::string& headers) const;

  private:
    void WriteEnvelope(std::string& out) const;
    void WriteSender(std::string& out) const;
    void WriteRecipients(std::string& out) const;
    void WriteMessageFields(std::string& out) const;
    template <class Use>
    void ForEachPart(Use use) const;
    std::size_t ContentSize() const;
    void WriteContent(std::string& out) const;

    const CMmsMessage& message_;
    std::int64_t now_;
    std::string outerBoundary_, innerBoundary_;
};
