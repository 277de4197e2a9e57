// The class SmsDeliveryStatus, and making one from a report.
#pragma once
#include "frame/ValuesAuto.h"
#include "sms/SmsDeliveryReports.h"

ComPointer<IDispatch> NewDeliveryStatus(const CSmsDeliveryReport& report);
