// MMS notification content: tells a phone where a multimedia message waits (m-notification-ind, OMA-MMS-ENC).
#pragma once
#include "frame/VrmBase.h"
#include "sms/SmsConstants.h"

#include <cstdint>
#include <string>

struct MmsNotificationFields {
    std::string From;
    std::string Subject;
    std::int32_t Class = sms::asMMS_CLASS_PERSONAL;
    std::int32_t Expiration = 24;  // hours from now
    std::string ContentLocation;
    std::int32_t MessageSize = 0;  // octets
    std::string TransactionId;     // made from the time when empty
    std::string EncodedMessage;    // hexadecimal
};

class CSmsDataMmsNotification : public CVrmBase, public MmsNotificationFields {
  public:
    explicit CSmsDataMmsNotification(Clock& clock = SystemClock())
        : CVrmBase("CSmsDataMmsNotification", clock) {}

    void Clear() { static_cast<MmsNotificationFields&>(*this) = {}; }
    void Encode();

  private:
    std::uint8_t transaction_ = 0;
};
