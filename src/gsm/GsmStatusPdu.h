// The SMS-STATUS-REPORT reader, 3GPP TS 23.040 section 9.2.2.3.
#pragma once
#include "gsm/GsmPdu.h"

class CGsmStatusPdu : public CGsmPdu {
  public:
    using CGsmPdu::CGsmPdu;

    // False when the text is no SMS-STATUS-REPORT.
    [[nodiscard]] bool Decode(Clock& clock = SystemClock());

    std::string serviceCentre;
    std::uint8_t messageReference = 0;
    GsmAddress recipient;
    TimeStamp timeStamp{};
    TimeStamp dischargeTime{};
    std::int32_t dischargeSeconds = 0;
    std::uint8_t status = 0;
    std::string report;  // "%02X,%s,%02ld": message reference, discharge time, status
};

// The delivery status (asDELIVERYSTATUS_...) that a TP-Status octet stands for.
std::int32_t StatusOfOctet(std::uint8_t status);
