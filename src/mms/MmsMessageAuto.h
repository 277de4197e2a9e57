// Reaching the class MmsMessage from a protocol object, and making one.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"
#include "mms/MmsMessage.h"

#include <functional>

// Hands the message in a VARIANT to a protocol's `send`, or null when there is no MmsMessage of this
// apartment. A message that is encoded thereby has the code of that as its LastError, as after EncodeMessage.
ResultCode SendMmsMessage(const VARIANT* value, const std::function<ResultCode(CMmsMessage*)>& send);

// A new MmsMessage that takes over what a message holds.
ComPointer<IDispatch> NewMmsMessage(MmsMessageFields&& fields);
