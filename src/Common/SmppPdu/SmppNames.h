// The commands and statuses of SMPP, with their names in dumps.
#pragma once
#include <cstdint>
#include <string_view>

namespace smpp {
inline constexpr std::uint32_t kResponse = 0x80000000;
inline constexpr std::uint32_t kGenericNack = 0x80000000;
inline constexpr std::uint32_t kBindReceiver = 0x00000001;
inline constexpr std::uint32_t kBindTransmitter = 0x00000002;
inline constexpr std::uint32_t kSubmitSm = 0x00000004;
inline constexpr std::uint32_t kDeliverSm = 0x00000005;
inline constexpr std::uint32_t kUnbind = 0x00000006;
inline constexpr std::uint32_t kBindTransceiver = 0x00000009;
inline constexpr std::uint32_t kEnquireLink = 0x00000015;
inline constexpr std::uint32_t kDataSm = 0x00000103;
}  // namespace smpp

// "SUBMIT_SM_RESP"; "UNKNOWN PDU" for an unknown command.
std::string_view CommandName(std::uint32_t commandId);

// "ESME_ROK"; empty for a status without a name.
std::string_view StatusName(std::uint32_t commandStatus);
