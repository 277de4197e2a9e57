// The class SmsDeliveryStatus, and filling one from a report.
#pragma once
#include "NeltCtrl.h"
#include "foundation/ResultCode.h"
#include "sms/SmsDeliveryReports.h"

#include <cstdint>

// Writes the report into the SmsDeliveryStatus in a VARIANT; 0, or 34141 when there is none.
ResultCode FillStatus(const CSmsDeliveryReport& report, const VARIANT* target);

// A new SmsDeliveryStatus with the report's contents, into an output VARIANT.
void GiveDeliveryStatus(VARIANT* out, const CSmsDeliveryReport& report);
