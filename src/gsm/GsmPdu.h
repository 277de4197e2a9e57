// The reader that the PDUs a modem lists have in common: hexadecimal text, a cursor, addresses and time
// stamps.
#pragma once
#include "foundation/Clock.h"
#include "foundation/OctetReader.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// An address field, 3GPP TS 23.040 section 9.1.2.5.
struct GsmAddress {
    std::uint8_t typeOfNumber = 0;
    std::uint8_t numberingPlan = 0;
    std::string digits;  // or the name of an alphanumeric address

    static constexpr std::uint8_t kInternational = 1;
    static constexpr std::uint8_t kAlphanumeric = 5;
};

class CGsmPdu {
  public:
    static constexpr std::size_t kCapacity = 2048;  // characters taken; what is missing reads as zero

    // A service-centre time stamp's 14 digits, kept as seven octets in reading order (0x26 for the year 26).
    using TimeStamp = std::array<std::uint8_t, 7>;

    explicit CGsmPdu(std::string_view text);
    CGsmPdu(const CGsmPdu&) = delete;
    CGsmPdu& operator=(const CGsmPdu&) = delete;

  protected:
    ~CGsmPdu() = default;

    std::uint8_t Octet() { return in_.Octet(); }
    // At most kMostOctets; they last as long as the reader.
    std::span<const std::uint8_t> Octets(std::size_t count);
    static constexpr std::size_t kMostOctets = 512;

    // The address of the service centre: a count of octets, then the address.
    GsmAddress ServiceCentre();
    // Any other address: a count of digits, then the address.
    GsmAddress Address();
    TimeStamp ReadTimeStamp();

  private:
    std::string SemiOctets(std::size_t octets);

    // Behind those of the text stand the zeros that were last read for missing ones.
    std::array<std::uint8_t, kCapacity / 2 + kMostOctets> octets_;
    std::size_t size_;  // of the text's
    OctetReader in_;
};

// The 14 digits as text.
std::string TimeStampText(const CGsmPdu::TimeStamp& stamp);

// Seconds since 1970 of the first 12 digits, read as local time in the years 2000 to 2099; the zone is
// ignored.
std::int32_t TimeStampSeconds(const CGsmPdu::TimeStamp& stamp, Clock& clock);
