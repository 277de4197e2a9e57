#include "gsm/GsmPdu.h"

#include "Common/GsmPdu/Septets.h"
#include "foundation/Hex.h"

#include <algorithm>
#include <cstring>

namespace {

// Writes the octets that the text stands for, also one of which only the first character is there, and
// returns their number.
std::size_t ReadOctets(std::string_view text, std::uint8_t* octets) {
    const std::size_t whole = hex::Read(text, octets);
    if (text.size() % 2 == 0) return whole;
    octets[whole] = static_cast<std::uint8_t>(hex::Value(text.back()) << 4);
    return whole + 1;
}

}  // namespace

CGsmPdu::CGsmPdu(std::string_view text)
    : size_(ReadOctets(text.substr(0, kCapacity), octets_.data())),
      in_({reinterpret_cast<const char*>(octets_.data()), size_}) {}

std::span<const std::uint8_t> CGsmPdu::Octets(std::size_t count) {
    const std::size_t at = in_.Position();
    const std::size_t present = in_.Take(count).size();
    std::fill_n(octets_.data() + size_, count - present, std::uint8_t{0});
    return {octets_.data() + at, count};
}

std::string CGsmPdu::SemiOctets(std::size_t octets) {
    std::array<char, std::size_t{2} * 0xFF> digits;
    std::size_t size = 0;
    for (const std::uint8_t octet : Octets(octets)) {
        const auto& pair = hex::kPairs[octet];
        digits[size++] = pair[1];
        digits[size++] = pair[0];
    }
    if (size > 0 && digits[size - 1] == 'F') --size;
    return {digits.data(), size};
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
    std::array<std::uint8_t, 160> codes;
    const std::size_t size = septets::Unpack(Octets(octets), 0, codes.size(), codes.data());
    address.digits.assign(codes.begin(), codes.begin() + size);  // the codes themselves are the characters
    address.digits.resize(address.digits.find_last_not_of('\0') + 1);
    return address;
}

CGsmPdu::TimeStamp CGsmPdu::ReadTimeStamp() {
    TimeStamp stamp;
    std::uint64_t octets = 0;
    std::memcpy(&octets, Octets(stamp.size()).data(), stamp.size());
    constexpr std::uint64_t kLowDigits = 0x0F0F0F0F0F0F0F0F;
    octets = (octets & kLowDigits) << 4 | (octets >> 4 & kLowDigits);
    std::memcpy(stamp.data(), &octets, stamp.size());
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
