// SMS-DELIVER and SMS-STATUS-REPORT readers.
#include "Fuzz.h"
#include "gsm/GsmStatusPdu.h"
#include "gsm/PDUDecode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CPDUDecode deliver;
    (void)deliver.Decode(TextOf(data, size));
    (void)deliver.Decode(TextOf(data, size));
    CGsmStatusPdu status(TextOf(data, size));
    (void)status.Decode();
    return 0;
}
