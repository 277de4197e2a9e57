#include "gsm/GsmPduSize.h"

#include "foundation/Hex.h"

#include <cstdint>
#include <optional>

namespace {

constexpr std::uint8_t kMessageType = 0x03;
constexpr std::uint8_t kDeliver = 0x00;
constexpr std::uint8_t kStatusReport = 0x02;
constexpr std::uint8_t kDcsAlphabet = 0x0C;
constexpr std::size_t kTimeStamp = 7;

// Octets by their place; one that is missing is nothing.
class Octets {
  public:
    explicit Octets(std::string_view hexText) : text_(hexText) {}
    std::size_t Size() const { return text_.size() / 2; }
    std::optional<std::uint8_t> At(std::size_t place) const {
        if (place >= Size()) return std::nullopt;
        return static_cast<std::uint8_t>(hex::Value(text_[2 * place]) << 4 |
                                         hex::Value(text_[2 * place + 1]));
    }

  private:
    std::string_view text_;
};

// Where the address at a place ends: a count of digits, a type, and the digits.
std::size_t AddressEnd(const Octets& pdu, std::size_t at) {
    return at + 2 + (pdu.At(at).value_or(0) + 1U) / 2;
}

// Fields from TP-MTI on, 3GPP TS 23.040 sections 9.2.2.1 and 9.2.2.3.
std::size_t DeliverEnd(const Octets& pdu, std::size_t at) {
    const std::size_t dcsAt = AddressEnd(pdu, at + 1) + 1;
    const std::size_t lengthAt = dcsAt + 1 + kTimeStamp;
    const std::size_t length = pdu.At(lengthAt).value_or(0);
    const bool septets = (pdu.At(dcsAt).value_or(0) & kDcsAlphabet) == 0;
    return lengthAt + 1 + (septets ? (length * 7 + 7) / 8 : length);
}

std::size_t StatusReportEnd(const Octets& pdu, std::size_t at) {
    return AddressEnd(pdu, at + 2) + 2 * kTimeStamp + 1;
}

}  // namespace

GsmPduSize SizeOfPdu(std::string_view hexText) {
    const Octets pdu(hexText);
    const std::size_t start = 1U + pdu.At(0).value_or(0);
    GsmPduSize size;
    size.octets = pdu.Size() > start ? pdu.Size() - start : 0;
    // A PDU of which not even its kind is left misses that octet at least.
    const std::optional<std::uint8_t> first = pdu.At(start);
    if (!first) {
        size.needed = 1;
    } else if ((*first & kMessageType) == kDeliver) {
        size.needed = DeliverEnd(pdu, start) - start;
    } else if ((*first & kMessageType) == kStatusReport) {
        size.needed = StatusReportEnd(pdu, start) - start;
    }
    return size;
}
