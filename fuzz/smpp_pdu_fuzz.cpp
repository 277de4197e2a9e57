// Every SMPP PDU reader, with its dump; what is read can be written and read again.
#include "Common/SmppPdu/SmppPdus.h"
#include "Common/SmppPdu/SmppTime.h"
#include "Fuzz.h"

namespace {

template <class Pdu>
void Try(std::span<const std::uint8_t> octets) {
    Pdu pdu;
    pdu.SetData(octets);
    pdu.Decode();
    pdu.SetDumpFlags(255);
    std::string text;
    pdu.Dump(text);
    pdu.Encode();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span<const std::uint8_t> octets(data + 1, size - 1);
    switch (data[0] % 6) {
        case 0:
            Try<CSmppBindTransceiver>(octets);
            break;
        case 1:
            Try<CSmppSubmitSm>(octets);
            break;
        case 2:
            Try<CSmppDeliverSm>(octets);
            break;
        case 3:
            Try<CSmppDataSm>(octets);
            break;
        case 4:
            Try<CSmppSubmitSmResp>(octets);
            break;
        default: {
            std::u16string text(octets.begin(), octets.end());
            CTLVRecords records;
            records.FromText(text);
            CTLVRecords again;
            again.FromText(records.ToText());
            (void)ParseSmppTime(TextOf(octets.data(), octets.size()));
            break;
        }
    }
    return 0;
}
