// A dialled line that says anything, for the readers of replies.
#pragma once
#include "Fuzz.h"
#include "foundation/serial/VrmComIO.h"
#include "support/ScriptedModem.h"

#include <cstdlib>
#include <string>

struct DialledLine {
    VirtualClock clock;
    ScriptedModem modem{clock};
    CVrmComIO port{modem, clock};

    // What the line says from now on, so many octets a read: at each octet 0xFF it falls silent for `pause`
    // ms.
    DialledLine(std::string_view says, std::size_t fragment, std::uint32_t pause) {
        if (port.Open({.device = "COM3"}) != result::Success) std::abort();
        modem.Fragment(fragment);
        std::uint32_t when = 0;
        while (!says.empty()) {
            const std::string_view piece = says.substr(0, says.find('\xFF'));
            if (!piece.empty()) modem.GiveAfter(when, std::string(piece));
            says.remove_prefix(std::min(says.size(), piece.size() + 1));
            when += pause;
        }
    }
};
