// The class SmsDeliveryStatus, and making one from a report.
#pragma once
#include "frame/ValuesAuto.h"
#include "sms/SmsDeliveryReports.h"

// `completedTime`: the report's, as text.
ComPointer<IDispatch> NewDeliveryStatus(const CSmsDeliveryReport& report, std::string completedTime);
