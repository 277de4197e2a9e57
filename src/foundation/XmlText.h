// Text inside XML.
#pragma once
#include <string>
#include <string_view>

namespace xml {

// With what has a meaning in XML as entities, so that the text can stand in an element or in an attribute.
// Control characters that XML 1.0 cannot hold become blanks.
std::string Escape(std::string_view text);

}  // namespace xml
