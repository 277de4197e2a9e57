// What answers an MM1 request, and what a modem says of its packet-data contexts.
#include "Fuzz.h"
#include "foundation/ErrorTexts.h"
#include "gsm/PacketContext.h"
#include "mms/Mm1Reply.h"

#include <cstdlib>

namespace {

// The codes that both readers may give.
bool IsKnown(ResultCode code) {
    return code == result::Success || code == result::HttpNoResponse || code == result::HttpProviderUnknown ||
           (code.Number() >= 33761 && code.Number() <= 33768);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view octets = TextOf(data, size);
    for (const Mm1Reply& reply : {ReadSendConf(octets), ReadRetrieveConf(octets)}) {
        const bool isUnit = reply.code != result::HttpNoResponse && reply.code != result::HttpProviderUnknown;
        if (!IsKnown(reply.code) || reply.messageId.size() > size) std::abort();
        if (!isUnit && (reply.status != 0 || !reply.text.empty())) std::abort();
        // What acknowledges it is a unit, whatever the transaction is called.
        if (AcknowledgeInd(reply.transactionId).size() > size + 16) std::abort();
    }
    const std::string_view offered = octets.substr(0, size / 2);
    const std::string_view inUse = octets.substr(size / 2);
    const PacketContext chosen = ChoosePacketContext(offered, inUse, "mms");
    if (chosen.id > 0x7FFFFFFF) std::abort();
    // A context that is there is taken whatever else could be.
    if (chosen.isDefined && ChoosePacketContext({}, inUse, "mms").id != chosen.id) std::abort();
    return 0;
}
