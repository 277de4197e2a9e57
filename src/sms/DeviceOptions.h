// What the serial device constants of the interface mean for a port.
#pragma once
#include "foundation/serial/SerialDevice.h"

#include <cstdint>

// asDEVICEFLOWCONTROL_...: ENABLE sets RTS/CTS handshake, DISABLE turns every handshake off, DEFAULT changes
// nothing.
void ApplyFlowControl(SerialSettings& settings, std::int32_t deviceFlowControl);
