// Waiting for an answer that comes in octets, not in AT lines. A dialogue over a dialled connection is a
// table of such waits.
#pragma once
#include "foundation/serial/VrmComIO.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

enum class Heard {
    kNotYet,  // no answer so far
    kEnough,  // an answer, taken as it is when the read is over
    kWhole,   // an answer that needs nothing more: the read ends at once
};

// One wait: `tries` reads of up to `read` ms each, until what was heard is an answer.
struct HearUntil {
    const char* line = nullptr;  // logged before each read
    int tries = 1;
    std::uint32_t read = 0;    // ms
    std::uint32_t before = 0;  // ms of silence before the first read
    std::uint32_t pause = 0;   // ms between two reads
    std::string_view text{};   // the answer is whole once it holds this text ...
    // ... or as this judges all that was heard in this wait, at each arrival and after each read.
    Heard (*accept)(std::string_view heard) = nullptr;
    bool sevenBits = false;   // the eighth bit is parity, of which nothing is heard
    std::string_view echo{};  // what was written before: given back by the line, it is not heard
};

struct Hearing {
    Heard outcome = Heard::kNotYet;
    std::string heard;  // in all reads
};

// `onRead` is given what was heard in each read, unless that was nothing; a read that goes on with a line
// comes together with the one that began it.
using OnRead = std::function<void(std::string_view octets)>;
Hearing Hear(CVrmComIO& port, const HearUntil& wait, const OnRead& onRead = {});

// An answer of any octets, complete when the read is over.
Heard AnyOctets(std::string_view heard);
