// The messages that lie in the storages of a GSM device, as records.
#pragma once
#include "gsm/GsmDevice.h"
#include "sms/SmsMessageX.h"

#include <functional>
#include <string>

// What a reader of a storage does with what it finds. A key says where a message lies: "SM0003;".
struct GsmInboxUse {
    // True for a PDU that is no message to the reader; only those that came whole are asked about.
    std::function<bool(const std::string& pdu, const std::string& key)> isOther;
    std::function<void(CSmsMessageX message)> take;
};

// Reads one storage of the open device, all that can be read: what was cut on its way and what cannot be
// decoded is logged and left out. The codes of CGsmDevice::List.
ResultCode ReadInbox(CGsmDevice& device, const GsmStorage& storage, const GsmInboxUse& use);
