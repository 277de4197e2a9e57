#include "gsm/GsmStatusPdu.h"

#include "sms/SmsConstants.h"

#include <cstdio>

namespace {
constexpr std::uint8_t kMessageType = 0x03;
constexpr std::uint8_t kStatusReport = 0x02;
}  // namespace

bool CGsmStatusPdu::Decode(Clock& clock) {
    serviceCentre = ServiceCentre().digits;
    if ((Octet() & kMessageType) != kStatusReport) return false;
    messageReference = Octet();
    recipient = Address();
    timeStamp = ReadTimeStamp();
    dischargeTime = ReadTimeStamp();
    status = Octet();
    dischargeSeconds = TimeStampSeconds(dischargeTime, clock);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02X,%s,%02d", messageReference,
                  TimeText(clock, dischargeSeconds).c_str(), status);
    report = text.data();
    return true;
}

std::int32_t StatusOfOctet(std::uint8_t status) {
    switch (status) {
        case 0x00:
            return sms::asDELIVERYSTATUS_DELIVERED;
        case 0x01:
        case 0x02:
        case 0x20:
        case 0x21:
        case 0x22:
        case 0x23:
        case 0x24:
        case 0x25:
        case 0x30:
            return sms::asDELIVERYSTATUS_ENROUTE;
        case 0x40:
        case 0x41:
        case 0x43:
        case 0x44:
        case 0x45:
        case 0x49:
            return sms::asDELIVERYSTATUS_UNDELIVERABLE;
        case 0x42:
            return sms::asDELIVERYSTATUS_REJECTED;
        case 0x46:
            return sms::asDELIVERYSTATUS_EXPIRED;
        case 0x47:
        case 0x48:
            return sms::asDELIVERYSTATUS_DELETED;
        default:
            return sms::asDELIVERYSTATUS_UNKNOWN;
    }
}
