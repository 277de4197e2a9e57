// Header fields, RFC 5322 and RFC 2047. Whatever a value holds, it stays one field.
#pragma once
#include <string>
#include <string_view>

namespace mime {

// Appends a field and its line end. A value of printable ASCII goes out as it is. Any other, one that could
// be taken for encoded-words, and one that no line can hold goes out as encoded-words (UTF-8 in base64) of at
// most 75 characters, one a line, each of whole characters. CR, LF and zeros count as blanks.
void AppendHeader(std::string& out, std::string_view name, std::u16string_view value);

// The same for text of the system's code page.
void AppendHeader(std::string& out, std::string_view name, std::string_view value);

// A field of one address. Of a name in front of it, "Name <user@host>", only the name is encoded.
void AppendAddressHeader(std::string& out, std::string_view name, std::string_view address);

}  // namespace mime
