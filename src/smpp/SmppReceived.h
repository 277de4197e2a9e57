// From a PDU that brings a message to the message as callers read it: addresses, coding, segmentation,
// header.
#pragma once
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/Clock.h"
#include "sms/SmsMessageX.h"

#include <cstdint>

// `charSet` is the asSMPPCHARSET_... in which texts of the default alphabet are read.
CSmsMessageX SmppReceivedMessage(const CSmppDeliverSm& pdu, std::int32_t charSet, Clock& clock);
CSmsMessageX SmppReceivedMessage(const CSmppDataSm& pdu, std::int32_t charSet, Clock& clock);
