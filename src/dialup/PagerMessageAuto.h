// The class PagerMessage, and the copy from it to the record that the channel works with.
#pragma once
#include "dialup/PagerMessageX.h"
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"

// Reads the PagerMessage in a VARIANT, whoever implements it; 0, or 34200 when there is none.
ResultCode CopyFromAutomation(const VARIANT* value, CPagerMessageX& record);
