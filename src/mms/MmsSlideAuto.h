// Reaching the class MmsSlide from a message.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"
#include "mms/MmsMessagePart.h"

#include <functional>

// Calls `use` with the slide in a VARIANT; 34141 when there is no MmsSlide of this apartment, whose parts no
// property shows.
ResultCode WithMmsSlide(const VARIANT* value, const std::function<void(const CMmsMessageSlide&)>& use);

// A new MmsSlide with a copy of the slide.
ComPointer<IDispatch> NewMmsSlide(const CMmsMessageSlide& slide);
