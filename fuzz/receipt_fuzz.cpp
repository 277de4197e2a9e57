// The receipt parser and the time forms in it.
#include "Common/SmppPdu/SmppTime.h"
#include "Fuzz.h"
#include "sms/SmsReceipt.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)ParseReceipt(TextOf(data, size));
    (void)ParseSmppTime(TextOf(data, size));
    return 0;
}
