// The decoder of MMS units, and everything that reads what it gives.
#include "Fuzz.h"
#include "mms/MMSECodec.h"
#include "mms/MmsMessage.h"
#include "mms/MmsNotificationReader.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view octets = TextOf(data, size);
    CMMSECodec unit;
    const bool whole = unit.Decode(octets) == 0;
    std::size_t carried = 0;
    for (const MmsPart& part : unit.Parts()) carried += part.data.size();
    if (carried > size || (whole && unit.Dump().empty())) std::abort();
    // What is read of a unit that is cut is never more than of the whole one.
    CMMSECodec cut;
    (void)cut.Decode(octets.substr(0, size / 2));
    if (cut.Fields().size() > unit.Fields().size() + 1 || cut.Parts().size() > unit.Parts().size() + 1)
        std::abort();
    (void)MmsNotifications().Decode(octets, 1'700'000'000);
    CMmsMessage message;
    message.EncodedMessage = octets;
    // What holds nothing of a unit leaves the message as it was.
    const std::size_t slides = unit.Fields().empty() ? 0 : 1;
    if ((message.Decode() == 0) != whole || message.Slides.size() != slides) std::abort();
    return 0;
}
