// Encodes a message as MM1 has it: the header fields of an MMS unit, and the parts in a WSP multipart.
#pragma once
#include "foundation/OctetWriter.h"
#include "foundation/ResultCode.h"
#include "mms/MmsMessage.h"

#include <cstdint>
#include <string>

class CMM1Body {
  public:
    // `now` in seconds since 1970.
    CMM1Body(const CMmsMessage& message, std::int64_t now) : message_(message), now_(now) {}

    // 0 and the unit in `out`, whose memory is used again; or 34134 for a subject of more than 40 characters,
    // and `out` stays as it is.
    ResultCode Encode(std::string& out) const;

  private:
    std::size_t Size() const;
    void WriteHeader(OctetWriter& out) const;
    void WriteSubject(OctetWriter& out) const;
    void WriteRecipients(OctetWriter& out) const;
    void WriteContentType(OctetWriter& out) const;
    void WriteParts(OctetWriter& out) const;
    void WriteSmil(OctetWriter& out) const;

    const CMmsMessage& message_;
    std::int64_t now_;
};
