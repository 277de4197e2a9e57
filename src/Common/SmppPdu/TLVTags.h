// The tags of SMPP 3.4 section 5.3.2 and SMPP 5.0 section 4.8.4, with the value type each is read as.
#pragma once
#include "Common/SmppPdu/TLVRecords.h"

#include <cstdint>
#include <string_view>

namespace tlv {
inline constexpr std::uint32_t kReceiptedMessageId = 0x001E;
inline constexpr std::uint32_t kSarMessageReference = 0x020C;
inline constexpr std::uint32_t kSarTotalSegments = 0x020E;
inline constexpr std::uint32_t kSarSegmentNumber = 0x020F;
inline constexpr std::uint32_t kMessagePayload = 0x0424;
inline constexpr std::uint32_t kMessageState = 0x0427;
}  // namespace tlv

// The value type of a received tag; an octet string for a tag without a row.
TLVType TypeOfTag(std::uint32_t tag);

// The name of a tag in dumps; "provider specific" for a tag without a row.
std::string_view NameOfTag(std::uint32_t tag);
