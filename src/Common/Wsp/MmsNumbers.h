// The assigned numbers of MMS units that both the SMS side and the MMS codec know (OMA MMS encapsulation
// chapter 7.3).
#pragma once
#include <cstdint>
#include <string_view>

namespace mms {

inline constexpr std::string_view kContentType = "application/vnd.wap.mms-message";
inline constexpr std::uint8_t kContentTypeCode = 0xBE;  // the same as a well-known number

namespace type {
inline constexpr std::uint8_t kNotificationInd = 0x82;
inline constexpr std::uint8_t kDeliveryInd = 0x86;
}  // namespace type

namespace header {
inline constexpr std::uint8_t kContentLocation = 0x83;
inline constexpr std::uint8_t kExpiry = 0x88;
inline constexpr std::uint8_t kFrom = 0x89;
inline constexpr std::uint8_t kMessageClass = 0x8A;
inline constexpr std::uint8_t kMessageType = 0x8C;
inline constexpr std::uint8_t kVersion = 0x8D;
inline constexpr std::uint8_t kMessageSize = 0x8E;
inline constexpr std::uint8_t kSubject = 0x96;
inline constexpr std::uint8_t kTransactionId = 0x98;
}  // namespace header

inline constexpr std::uint8_t kVersion10 = 0x90;
inline constexpr std::uint8_t kAddressPresent = 0x80;
inline constexpr std::uint8_t kAbsoluteTime = 0x80;
inline constexpr std::uint8_t kClassBase = 0x80;  // of personal, the first class

}  // namespace mms
