// What the serial device constants of the interface mean for a port.
#pragma once
#include "foundation/serial/SerialDevice.h"

#include <cstdint>

// asDEVICEFLOWCONTROL_...: ENABLE sets RTS/CTS handshake, DISABLE turns every handshake off, DEFAULT changes
// nothing.
void ApplyFlowControl(SerialSettings& settings, std::int32_t deviceFlowControl);

// asDEVICESETTINGS_...: 8N1 or 7E1; DEFAULT changes nothing.
void ApplyDeviceSettings(SerialSettings& settings, std::int32_t deviceSettings);
