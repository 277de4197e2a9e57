// Numbers that this process gives out once only.
#pragma once
#include <cstdint>

// Counts up from a start that clock and process choose, so that two processes, or two runs at different
// times, meet only by chance. Wraps around after 2^32.
std::uint32_t UniqueNumber();

// The platform's number of this process.
std::uint32_t ProcessNumber();
