// The header fields of an MMS unit: one table of them (Common/Wsp/MmsHeaders.inc) serves reading, writing and
// dumps.
#pragma once
#include "foundation/OctetReader.h"
#include "foundation/OctetWriter.h"

#include <cstdint>
#include <string>
#include <string_view>

// One field. A field that was read shows into the unit's octets.
struct MmsField {
    std::uint8_t number = 0;     // with its high bit; 0 for a field that has a name instead
    std::string_view name = {};  // of a field that is no MMS field
    std::uint32_t token = 0;     // an assigned value with its high bit, or the number in front of another
    std::uint64_t value = 0;     // a number, seconds since 1970 or from now
    std::string_view text = {};
    std::uint64_t charset = 0;  // MIBenum of the text; 0 when none is given
};

// Reads the value of the field by its number; one that is not known is passed over. False when the value is
// damaged, in which case the reader stands behind it or at the end of the octets.
[[nodiscard]] bool ReadValueOf(MmsField& field, OctetReader& in);

// Number and value. What the forms hold: octets their token; texts `text`; encoded texts a charset below 128
// as well, or 0 for a plain text; times a token and a value.
void WriteField(OctetWriter& out, const MmsField& field);

// "X-Mms-Message-Type"; empty for a number that is no field.
std::string_view FieldName(std::uint8_t number);

// "Subject: \"Hello\" charset=106", without a line end.
std::string DumpOf(const MmsField& field);

// The text in double quotes, with what is not printable as "\xNN".
std::string QuotedText(std::string_view text);
