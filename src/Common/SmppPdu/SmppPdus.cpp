#include "Common/SmppPdu/SmppPdus.h"

#include "Common/SmppPdu/TLVTags.h"

namespace {
constexpr std::uint8_t kHeaderIndicator = 0x40;
constexpr std::uint8_t kUcs2 = 0x08;
}  // namespace

void SmppReceivedText::Read(std::string_view shortMessage, const CTLVRecords& tlvs, std::uint8_t esmClass,
                            std::uint8_t dataCoding) {
    message.clear();
    userDataHeader.Reset();
    Append(shortMessage, esmClass, dataCoding);
    const CTLVRecord* payload = tlvs.Find(tlv::kMessagePayload);
    if (payload == nullptr) return;
    std::string octets(payload->text.size(), '\0');
    std::ranges::transform(payload->text, octets.begin(), [](char16_t c) { return static_cast<char>(c); });
    userDataHeader.Reset();
    Append(octets, esmClass, dataCoding);
}

void SmppReceivedText::Append(std::string_view octets, std::uint8_t esmClass, std::uint8_t dataCoding) {
    if ((esmClass & kHeaderIndicator) != 0 && !octets.empty()) {
        const std::size_t length =
            std::min<std::size_t>(static_cast<std::uint8_t>(octets[0]), octets.size() - 1);
        for (const char octet : octets.substr(1, length))
            userDataHeader.AddOctet(static_cast<std::uint8_t>(octet));
        octets.remove_prefix(1 + length);
    }
    const auto at = [octets](std::size_t i) {
        return i < octets.size() ? static_cast<std::uint8_t>(octets[i]) : std::uint8_t{0};
    };
    const std::size_t step = (dataCoding & kUcs2) != 0 ? 2 : 1;
    for (std::size_t i = 0; i < octets.size(); i += step) {
        message.push_back(static_cast<char16_t>(step == 2 ? at(i) << 8 | at(i + 1) : at(i)));
    }
}
