// WAP push content: a service indication (a text and a link that the phone shows) or a service load (a link
// that it fetches). WAP-167, WAP-168.
#pragma once
#include "foundation/OctetWriter.h"
#include "frame/VrmBase.h"
#include "sms/SmsConstants.h"

#include <cstdint>
#include <string>

struct WapPushFields {
    std::string URL;
    std::string Description;                                          // of a service indication
    std::string SignalReference;                                      // its identifier
    std::int32_t ConnectionType = sms::asWAPPUSH_SERVICE_INDICATION;  // any other value: service load
    std::int32_t SignalAction = sms::asWAPPUSHSIGNAL_MEDIUM;          // of a service indication
    std::int32_t ExecuteAction = sms::asWAPPUSH_ACTION_EXECUTE_LOW;   // of a service load
};

class CSmsDataWapPush : public CVrmBase, public WapPushFields {
  public:
    CSmsDataWapPush() : CVrmBase("CSmsDataWapPush") {}

    std::string EncodedMessage;  // hexadecimal

    // The result of the last Encode stays.
    void Clear() { static_cast<WapPushFields&>(*this) = {}; }
    void Encode();

  private:
    void WriteIndication(OctetWriter& out) const;
    void WriteLoad(OctetWriter& out) const;

    std::uint8_t transaction_ = 0;
};
