#include "sms/DeviceOptions.h"

#include "sms/SmsConstants.h"

void ApplyFlowControl(SerialSettings& settings, std::int32_t deviceFlowControl) {
    switch (deviceFlowControl) {
        case sms::asDEVICEFLOWCONTROL_ENABLE:
            settings.rtsControl = 2;
            settings.ctsFlow = 2;
            break;
        case sms::asDEVICEFLOWCONTROL_DISABLE:
            settings.rtsControl = 1;  // no handshake: the line is raised by hand after opening
            settings.ctsFlow = 1;
            settings.dsrFlow = 1;
            settings.xonXoff = 1;
            break;
        default:
            break;
    }
}

void ApplyDeviceSettings(SerialSettings& settings, std::int32_t deviceSettings) {
    constexpr std::uint32_t kNone = 1, kEven = 3, kOneStopBit = 1;
    const bool isKnown =
        deviceSettings == sms::asDEVICESETTINGS_8N1 || deviceSettings == sms::asDEVICESETTINGS_7E1;
    if (!isKnown) return;
    const bool even = deviceSettings == sms::asDEVICESETTINGS_7E1;
    settings.parity = even ? kEven : kNone;
    settings.dataBits = even ? 7 : 8;
    settings.stopBits = kOneStopBit;
}
