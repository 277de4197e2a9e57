// What stands before the content of a message that goes to an application of the phone.
#pragma once
#include "Common/GsmPdu/HeaderElements.h"
#include "foundation/OctetWriter.h"

#include <cstdint>

// The ports of well-known applications.
namespace wapport {
inline constexpr std::uint16_t kPush = 2948;
inline constexpr std::uint16_t kConnectionlessWsp = 9200;
inline constexpr std::uint16_t kVCard = 9204;
inline constexpr std::uint16_t kSettings = 49999;  // over-the-air settings
inline constexpr std::uint16_t kSettingsSender = 49154;
}  // namespace wapport

// A user data header with 16-bit application port addressing (3GPP TS 23.040 section 9.2.3.24.4).
inline void WritePortHeader(OctetWriter& out, std::uint16_t destination, std::uint16_t source) {
    out.Octet(udh::kPortsSize);
    out.Octets(udh::Ports(destination, source));
}

// The start of a connectionless WSP push PDU (WAP-230 section 8.2.4.1); the content type and other headers
// follow, `headersLength` octets of them.
inline void WritePush(OctetWriter& out, std::uint8_t transactionId, std::size_t headersLength) {
    constexpr std::uint8_t kPushPdu = 0x06;
    out.Octets({transactionId, kPushPdu, static_cast<std::uint8_t>(headersLength)});
}
