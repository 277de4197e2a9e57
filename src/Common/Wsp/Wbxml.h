// The tokens that all binary XML documents share (WAP-192).
#pragma once
#include "foundation/OctetWriter.h"

namespace wbxml {

inline constexpr std::uint8_t kEnd = 0x01;
inline constexpr std::uint8_t kInlineString = 0x03;

// The head of a document in UTF-8 without string table.
inline void WriteHead(OctetWriter& out, std::uint8_t version, std::uint8_t publicId) {
    constexpr std::uint8_t kUtf8 = 0x6A;
    constexpr std::uint8_t kNoStringTable = 0;
    out.Octets({version, publicId, kUtf8, kNoStringTable});
}

inline void WriteInline(OctetWriter& out, std::string_view text) {
    out.Octet(kInlineString);
    out.TextString(text);
}

}  // namespace wbxml
