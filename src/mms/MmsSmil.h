// The presentation part: which part is shown on which slide, and for how long (SMIL 2.0 as of 3GPP
// TS 26.234).
#pragma once
#include "mms/MmsMessagePart.h"

#include <string>
#include <vector>

inline constexpr const char* kSmilType = "application/smil";

std::string SmilOf(const std::vector<CMmsMessageSlide>& slides);
