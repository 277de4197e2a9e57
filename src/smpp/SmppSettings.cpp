#include "smpp/SmppSettings.h"

#include "sms/SmsConstants.h"

std::uint8_t SmppSettings::InterfaceVersion() const {
    switch (systemVersion) {
        case 0x33:
        case sms::asSMPPVERSION_33:
            return 0x33;
        case 0x34:
        case sms::asSMPPVERSION_34:
            return 0x34;
        case 0x50:
        case sms::asSMPPVERSION_50:
            return 0x50;
        default:
            return 0;
    }
}
