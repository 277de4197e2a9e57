// The assigned numbers of MMS units that both the SMS side and the MMS codec know (OMA MMS encapsulation
// chapter 7.3).
#pragma once
#include <cstdint>
#include <string_view>

namespace mms {

inline constexpr std::string_view kContentType = "application/vnd.wap.mms-message";
inline constexpr std::uint8_t kContentTypeCode = 0xBE;  // the same as a well-known number

namespace type {
inline constexpr std::uint8_t kSendReq = 0x80;
inline constexpr std::uint8_t kSendConf = 0x81;
inline constexpr std::uint8_t kNotificationInd = 0x82;
inline constexpr std::uint8_t kNotifyRespInd = 0x83;
inline constexpr std::uint8_t kRetrieveConf = 0x84;
inline constexpr std::uint8_t kAcknowledgeInd = 0x85;
inline constexpr std::uint8_t kDeliveryInd = 0x86;
}  // namespace type

// The header fields, for example `mms::header::kSubject` (0x96).
namespace header {
#define HEADER(number, id, name, kind) inline constexpr std::uint8_t k##id = number;
#include "Common/Wsp/MmsHeaders.inc"
}  // namespace header

inline constexpr std::uint8_t kVersion10 = 0x90;
inline constexpr std::uint8_t kAddressPresent = 0x80;
inline constexpr std::uint8_t kInsertAddress = 0x81;
inline constexpr std::uint8_t kAbsoluteTime = 0x80;
inline constexpr std::uint8_t kRelativeTime = 0x81;
inline constexpr std::uint8_t kYes = 0x80;
inline constexpr std::uint8_t kNo = 0x81;
inline constexpr std::uint8_t kClassBase = 0x80;     // of personal, the first class
inline constexpr std::uint8_t kPriorityBase = 0x80;  // of low, the first priority

}  // namespace mms
