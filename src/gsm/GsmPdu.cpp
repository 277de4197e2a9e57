#include "gsm/GsmPdu.h"

#include "Common/GsmPdu/Septets.h"
#include "foundation/Hex.h"

#include <algorithm>

CGsmPdu::CGsmPdu(std::string_view text) : text_(text.substr(0, kCapacity)) {}

std::uint8_t CGsmPdu::Octet() {
    const auto digit = [this] {
        return cursor_ < text_.size() ? hex::Value(text_[cursor_++]) : std::uint8_t{0};
    };
    const std::uint8_t high = digit();
    return static_cast<std::uint8_t>(high << 4 | digit());
}

void CGsmPdu::Octets(std::span<std::uint8_t> octets) {
    const std::size_t whole = hex::Read(text_.substr(cursor_, 2 * octets.size()), octets.data());
    cursor_ += 2 * whole;
    for (std::uint8_t& missing : octets.subspan(whole)) missing = Octet();
}

std::string CGsmPdu::SemiOctets(std::size_t octets) {
    std::string digits;
    for (std::size_t i = 0; i < octets; ++i) {
        const std::uint8_t octet = Octet();
        digits.push_back(hex::kDigits[octet & 0x0F]);
        digits.push_back(hex::kDigits[octet >> 4]);
    }
    if (!digits.empty() && digits.back() == 'F') digits.pop_back();
    return digits;
}

GsmAddress CGsmPdu::ServiceCentre() {
    GsmAddress address;
    const std::size_t length = Octet();
    if (length == 0) return address;
    const std::uint8_t type = Octet();
    address.typeOfNumber = type >> 4 & 0x07;
    address.numberingPlan = type & 0x0F;
    address.digits = SemiOctets(length - 1);
    return address;
}

GsmAddress CGsmPdu::Address() {
    GsmAddress address;
    const std::size_t count = Octet();
    const std::uint8_t type = Octet();
    address.typeOfNumber = type >> 4 & 0x07;
    address.numberingPlan = type & 0x0F;
    const std::size_t octets = (count + 1) / 2;
    if (address.typeOfNumber != GsmAddress::kAlphanumeric) {
        address.digits = SemiOctets(octets);
        return address;
    }
    std::array<std::uint8_t, 128> packed{};
    for (std::size_t i = 0; i < octets; ++i) packed[i] = Octet();
    std::array<std::uint8_t, 160> codes{};
    const std::size_t size = septets::Unpack({packed.data(), octets}, 0, codes.size(), codes.data());
    address.digits.assign(codes.begin(), codes.begin() + size);  // the codes themselves are the characters
    address.digits.resize(address.digits.find_last_not_of('\0') + 1);
    return address;
}

CGsmPdu::TimeStamp CGsmPdu::ReadTimeStamp() {
    TimeStamp stamp{};
    for (std::uint8_t& pair : stamp) {
        const std::uint8_t octet = Octet();
        pair = static_cast<std::uint8_t>(octet << 4 | octet >> 4);
    }
    return stamp;
}

std::string TimeStampText(const CGsmPdu::TimeStamp& stamp) {
    std::string text;
    for (const std::uint8_t pair : stamp) hex::Append(text, pair);
    return text;
}

std::int32_t TimeStampSeconds(const CGsmPdu::TimeStamp& stamp, Clock& clock) {
    const auto number = [&stamp](std::size_t i) { return (stamp[i] >> 4) * 10 + (stamp[i] & 0x0F); };
    return static_cast<std::int32_t>(
        clock.FromLocal({2000 + number(0), number(1), number(2), number(3), number(4), number(5)}));
}
