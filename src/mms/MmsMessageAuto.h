// Reaching the class MmsMessage from a protocol object, and making one.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"
#include "mms/MmsMessage.h"

#include <functional>

// Calls `use` with the message in a VARIANT, which takes settings and gives what is encoded; 34141 when there
// is no MmsMessage of this apartment.
ResultCode WithMmsMessage(const VARIANT* value, const std::function<ResultCode(CMmsMessage&)>& use);

// A new MmsMessage that takes over what a message holds.
ComPointer<IDispatch> NewMmsMessage(MmsMessageFields&& fields);
