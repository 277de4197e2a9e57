// The user data header reader.
#include "Common/GsmPdu/UserDataHeader.h"
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CUserDataHeader header;
    for (std::size_t i = 0; i < size; ++i) header.AddOctet(data[i]);
    for (std::uint32_t i = 0; i < 9; ++i) (void)header.Get(static_cast<CUserDataHeader::Value>(i));
    return 0;
}
