// Reads a multipart (RFC 2046) that comes from anyone.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace mime {

struct ReadPart {
    std::string_view headers;  // lines with their ends
    std::string_view content;  // as it stands, in whatever transfer encoding

    // The value without blanks at either end and in one line; empty when there is none.
    std::string Header(std::string_view name) const;
    // The content out of base64 or quoted-printable; nothing for base64 that is none.
    std::string Decoded() const;
};

// The parts of a multipart, whose own first delimiter line tells the boundary; none when there is no such
// line. What the last delimiter is missing for ends with the octets.
std::vector<ReadPart> ReadMultipart(std::string_view octets, std::size_t most = 64);

}  // namespace mime
