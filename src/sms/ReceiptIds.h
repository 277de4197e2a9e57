// The identifiers of messages as servers write them in answers and in receipts: the same number in two bases,
// in either case, with or without leading zeros.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The number of a decimal text in upper-case hexadecimal, and the other way round; of any length up to 65
// digits, the longest that SMPP knows. Nothing for a text that is no such number.
std::optional<std::string> HexOfDecimal(std::string_view decimal);
std::optional<std::string> DecimalOfHex(std::string_view hexadecimal);

// Without blanks at either end and without "0x".
std::string_view BareId(std::string_view id);

// Without regard to case, leading zeros, "0x" and blanks at either end.
bool LooselyEqual(std::string_view left, std::string_view right);

// The length of the bare id without leading zeros.
std::size_t SignificantLength(std::string_view id);

// Equal for what is loosely equal. Numbers that count up lie side by side: their last digit goes into the
// lowest bits.
std::uint32_t LooseHash(std::string_view id);
