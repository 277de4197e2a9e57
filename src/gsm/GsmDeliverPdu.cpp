#include "gsm/GsmDeliverPdu.h"

#include <algorithm>

namespace {
constexpr std::uint8_t kMessageType = 0x03;
constexpr std::uint8_t kDeliver = 0x00;
constexpr std::uint8_t kHeaderIndicator = 0x40;
constexpr std::uint8_t kDcsAlphabet = 0x0C;
constexpr std::uint8_t kDcsUcs2 = 0x08;
constexpr std::size_t kMostUnits = 256;  // of up to two octets
}  // namespace

bool CGsmDeliverPdu::Decode() {
    serviceCentre = ServiceCentre();
    const std::uint8_t first = Octet();
    if ((first & kMessageType) != kDeliver) return false;
    hasHeader = (first & kHeaderIndicator) != 0;
    originator = Address();
    protocolIdentifier = Octet();
    dcs = Octet();
    timeStamp = ReadTimeStamp();
    userDataLength = Octet();
    std::size_t headerOctets = 0;
    if (hasHeader) {
        const std::size_t length = Octet();
        header.AddOctets(Octets(length));
        header.Parse();
        headerOctets = length + 1;
    }
    const bool septets = (dcs & kDcsAlphabet) == 0;
    const std::size_t octets = septets ? (userDataLength * 7 + 7) / 8 : userDataLength;
    const std::size_t rest = octets > headerOctets ? octets - headerOctets : 0;
    const std::size_t unitSize = (dcs & kDcsUcs2) != 0 ? 2 : 1;
    data_ = Octets(std::min(rest / unitSize, kMostUnits) * unitSize);
    return true;
}
