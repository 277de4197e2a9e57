// The packet-data contexts of a GSM device, 3GPP TS 27.007 section 10.1.
#pragma once
#include "gsm/GsmDevice.h"

#include <cstdint>
#include <string>
#include <string_view>

// The context that an access point is reached by.
struct PacketContext {
    std::uint32_t id = 0;    // 0 = none
    bool isDefined = false;  // the device has it already
};

// Chooses by the replies to "AT+CGDCONT=?" and "AT+CGDCONT?": a context that has the access point, else the
// lowest id from 1 that is offered and not in use, else the last that is offered. None when none is offered.
PacketContext ChoosePacketContext(std::string_view offered, std::string_view inUse,
                                  std::string_view accessPoint);

// Makes the open device ready for a data call to the access point, which must be quotable; the id to dial
// with comes back. 0 or the code of a refusal: 30350 to 30352, 33140 or 33141.
ResultCode PreparePacketContext(CGsmDevice& device, std::string_view accessPoint, std::uint32_t& id);
