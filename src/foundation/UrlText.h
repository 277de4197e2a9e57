// Text inside URLs and forms.
#pragma once
#include <string>
#include <string_view>

namespace url {

// Appends octets as RFC 3986 writes them in a component: letters, digits and "-._~" stand for themselves,
// every other octet is "%XX".
void AppendEncoded(std::string& text, std::string_view octets);

}  // namespace url
