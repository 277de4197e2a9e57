// From a message to its submit_sm PDUs: addresses, coding, splitting, validity.
#pragma once
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/Clock.h"
#include "foundation/ResultCode.h"
#include "smpp/SmppPartReferences.h"
#include "smpp/SmppSettings.h"
#include "sms/SmsMessageX.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class SmppSubmitBuilder {
  public:
    explicit SmppSubmitBuilder(Clock& clock = SystemClock()) : clock_(&clock) {}

    // Makes `pdus` one encoded submit_sm a part, with sequence_number 0. 0, 34031 recipient, 34034 data that
    // is no hexadecimal, 34033 when a header leaves no room, more than 255 parts would be needed, or optional
    // parameters burst the PDU.
    ResultCode Build(const SmppSettings& settings, const CSmsMessageX& message,
                     std::vector<std::string>& pdus);

  private:
    struct Body;
    struct Layout;

    static Body ReadBody(const CSmsMessageX& message, std::int32_t charSet);
    ResultCode DivideIntoParts(const Body& body, Layout& layout);
    void PutFields(const SmppSettings& settings, const CSmsMessageX& message, std::uint8_t coding);
    bool EncodePart(std::string_view callerHeader, std::string_view data, const Layout& layout,
                    std::size_t part, std::string& octets);

    Clock* clock_;
    CSmppSubmitSm pdu_;
    SmppPartReferences references_;
};

// "YYMMDDhhmmss000+" (absolute, UTC) or "...000R" (relative) for a validity in minutes; empty for 0. The
// relative form counts the span from the epoch with the year less 100, as it always did.
std::string SmppValidity(std::int32_t minutes, bool relative, Clock& clock);
