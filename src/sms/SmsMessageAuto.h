// The class SmsMessage, and the copies between it and the record that protocols work with.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"
#include "sms/SmsMessageX.h"

// Reads the SmsMessage in a VARIANT, whoever implements it; 0, or 34141 when there is none.
ResultCode CopyFromAutomation(const VARIANT* value, CSmsMessageX& record);

// A new SmsMessage with what the record shows.
ComPointer<IDispatch> NewSmsMessage(const CSmsMessageX& record);
