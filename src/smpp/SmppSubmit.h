// From a message to its submit_sm PDUs: addresses, coding, splitting, validity.
#pragma once
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/Clock.h"
#include "foundation/ResultCode.h"
#include "smpp/SmppSettings.h"
#include "sms/SmsMessageX.h"

#include <cstdint>
#include <string>
#include <vector>

class SmppSubmitBuilder {
  public:
    explicit SmppSubmitBuilder(Clock& clock = SystemClock()) : clock_(&clock) {}

    // Makes `pdus` one encoded submit_sm a part, with sequence_number 0; leaves it alone on an error. 0,
    // 33208 when bound as receiver, 34031 recipient, 34033 when a header leaves no room or more than 255
    // parts would be needed.
    ResultCode Build(const SmppSettings& settings, const CSmsMessageX& message,
                     std::vector<std::string>& pdus);

  private:
    struct Body;
    struct Layout;

    static Body ReadBody(const CSmsMessageX& message, std::int32_t charSet);
    ResultCode DivideIntoParts(const Body& body, Layout& layout);
    std::uint8_t NextReference();
    void PutFields(const SmppSettings& settings, const CSmsMessageX& message, std::uint8_t coding);
    void EncodePart(const Body& body, const Layout& layout, std::size_t part, std::string& octets);

    Clock* clock_;
    CSmppSubmitSm pdu_;
    std::uint8_t lastReference_ = 0;
    std::uint32_t lastReferenceTick_ = 0;
};

// "YYMMDDhhmmss000+" (absolute, UTC) or "...000R" (relative) for a validity in minutes; empty for 0. The
// relative form counts the span from the epoch with the year less 100, as it always did.
std::string SmppValidity(std::int32_t minutes, bool relative, Clock& clock);
