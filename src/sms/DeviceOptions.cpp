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
