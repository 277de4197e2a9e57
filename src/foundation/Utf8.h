// Text between UTF-16 and UTF-8.
#pragma once
#include <string>
#include <string_view>

// A character behind what is there already; half of a pair or a number beyond Unicode becomes U+FFFD.
void AppendUtf8(std::string& out, char32_t character);

// Half of a pair without the other becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);

// What is no UTF-8 becomes U+FFFD, one for each octet.
std::u16string FromUtf8(std::string_view octets);

// Whether every octet is part of a well-formed sequence.
bool IsUtf8(std::string_view octets);
