// The reader of a user data header (UDH), 3GPP TS 23.040 section 9.2.3.24.
#pragma once
#include "foundation/OctetReader.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

class CUserDataHeader {
  public:
    static constexpr std::size_t kCapacity = 256;

    enum class Value : std::uint32_t {
        kSourcePort8 = 1,
        kDestinationPort8 = 2,
        kSourcePort16 = 3,
        kDestinationPort16 = 4,
        kReference = 5,
        kSequence = 6,
        kTotal = 7,
    };

    CUserDataHeader() = default;
    CUserDataHeader(const CUserDataHeader& other);
    CUserDataHeader(CUserDataHeader&&) noexcept = default;
    CUserDataHeader& operator=(const CUserDataHeader& other);
    CUserDataHeader& operator=(CUserDataHeader&&) noexcept = default;
    ~CUserDataHeader() = default;

    void Reset();

    // The header's octets without the UDHL octet; a 257th is ignored.
    void AddOctet(std::uint8_t octet) { AddOctets({&octet, 1}); }
    void AddOctets(std::span<const std::uint8_t> octets);
    void Parse();

    // A decoded value; parses first when octets were added since. 0 for values the header does not hold.
    std::uint32_t Get(Value value);

    bool HasHeader() const { return !octets_.empty(); }
    std::size_t OctetCount() const { return octets_.size(); }

  private:
    void TakeConcatenation(OctetReader& in, std::size_t referenceOctets, bool isWanted);
    std::uint32_t& At(Value value) { return values_[static_cast<std::size_t>(value) - 1]; }

    std::string octets_;  // which holds the headers that occur within itself
    std::array<std::uint32_t, 7> values_{};
    bool parsed_ = false;
};
