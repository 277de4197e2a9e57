// What counts as an address of a message: numbers as the channels take them, mail and internet addresses.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <string>
#include <string_view>

// A recipient as users write it: "+31612345678:2948" is the number and an application port.
struct Recipient {
    std::string address;
    std::uint32_t port = 0;
};

// Splits at the first ":"; a text whose third character is ":" ("dl:...") is kept whole.
Recipient ParseRecipient(std::string_view text);

namespace address {

// A first character that tells the kind of a number: international, unknown, national, network specific,
// short code, abbreviated.
inline constexpr std::string_view kPrefixes = "+UNSGA";

// 4 to 64 characters, after the first only digits and ":"; a text with "dl:" in it counts as well.
bool IsNumber(std::string_view text);

// The same, beginning with a digit or a prefix: what a sender may be.
bool IsSenderNumber(std::string_view text);

// 0, 34031 for what is no number, 34032 for a number that begins with another letter than a prefix.
ResultCode CheckNumber(std::string_view text);

// As a GSM PDU holds it: 3 to 20 characters, a digit or a prefix and then digits, not beginning with "00".
bool IsPduNumber(std::string_view text);

// What a modem dials: 1 to 32 of digits, blanks, ",+-*#@" and the letters A to D and W.
bool IsDialNumber(std::string_view text);

// Four decimal fields of at most 255, separated by dots.
bool IsIPv4(std::string_view text);

// At most 64 characters, "@" with something on either side, and no blank, control character or separator of
// addresses.
bool IsMail(std::string_view text);

}  // namespace address
