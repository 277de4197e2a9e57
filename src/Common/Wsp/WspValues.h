// The value forms of WSP headers (WAP-230 section 8.4.2): read within the octets there are, which the reader
// remembers when they were too few, and written.
#pragma once
#include "foundation/OctetReader.h"
#include "foundation/OctetWriter.h"

#include <cstdint>
#include <string_view>

namespace wsp {

inline constexpr std::uint8_t kLengthQuote = 0x1F;  // also the first octet that is no length itself
inline constexpr std::uint8_t kFirstText = 0x20;
inline constexpr std::uint8_t kQuote = 0x7F;  // before a text that begins with 0x80 or above
inline constexpr char kStringQuote = '"';
inline constexpr std::uint8_t kShort = 0x80;  // marks a short integer or an assigned number

// Parameters of a content type.
inline constexpr std::uint8_t kCharset = 0x81;
inline constexpr std::uint8_t kName = 0x85;
inline constexpr std::uint8_t kType = 0x89;
inline constexpr std::uint8_t kStart = 0x8A;

// Headers of a part.
inline constexpr std::uint8_t kContentLocation = 0x8E;
inline constexpr std::uint8_t kContentDisposition = 0xAE;
inline constexpr std::uint8_t kContentDisposition14 = 0xC5;
inline constexpr std::uint8_t kContentId = 0xC0;

// Seven bits an octet, five octets at the most.
std::uint64_t ReadUintvar(OctetReader& in);
void WriteUintvar(OctetWriter& out, std::uint32_t value);

// The octets that a value-length announces.
std::string_view ReadLengthed(OctetReader& in);
// The length itself, behind a length quote above 30.
void WriteValueLength(OctetWriter& out, std::size_t length);

// A text up to its zero octet, without a quote before it.
std::string_view ReadText(OctetReader& in);
// The same where nothing but a text should stand, whatever it begins with; what has a length instead is
// passed over.
std::string_view ReadTextValue(OctetReader& in);
// Without the quotes of a quoted string, of which receivers see the first, both or none.
std::string_view Unquoted(std::string_view text);
// A text and the zero octet that ends it; what stands behind a zero octet of its own is left out.
void WriteText(OctetWriter& out, std::string_view text);

struct EncodedText {
    std::string_view text;
    std::uint64_t charset = 0;  // MIBenum; 0 when none is given
};
EncodedText ReadEncodedText(OctetReader& in);

// A value as its first octet tells: a number in one octet or in several, or a text. Which of them stands
// where is up to the sender.
struct Value {
    enum class Kind : std::uint8_t { kShort, kLengthed, kText };
    Kind kind = Kind::kShort;
    std::uint64_t number = 0;  // of a short integer, or the octets of a lengthed value, the highest first
    std::string_view octets;   // of a text or a lengthed value
};
Value ReadValue(OctetReader& in);
// The number of a value that is one; 0 for a text.
std::uint64_t ReadInteger(OctetReader& in);

// The parameters by number or by name.
struct ContentType {
    std::string_view type;
    std::string_view name;  // of the parameters Name or Filename
    std::string_view start;
    std::string_view boundary;
    std::uint64_t charset = 0;  // MIBenum
};
ContentType ReadContentType(OctetReader& in);

// The name that a Content-Disposition gives.
std::string_view ReadDispositionName(OctetReader& in);

}  // namespace wsp
