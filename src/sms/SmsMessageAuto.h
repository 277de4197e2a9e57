// The class SmsMessage, and the copies between it and the record that protocols work with.
#pragma once
#include "NeltCtrl.h"
#include "foundation/ResultCode.h"
#include "sms/SmsMessageX.h"

#include <cstdint>

// Reads the SmsMessage in a VARIANT through its own properties; 0, or 34141 when there is none.
ResultCode CopyFromAutomation(const VARIANT* value, CSmsMessageX& record);

// Writes the record through the object's own properties; 0, or 34141 when there is no object.
ResultCode CopyToAutomation(const CSmsMessageX& record, ISmsMessage* target);

// A new SmsMessage with the record's contents, into an output VARIANT.
void GiveSmsMessage(VARIANT* out, const CSmsMessageX& record);
