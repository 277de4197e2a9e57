// Small operations on octet strings that several channels need.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Without blanks, tabs and line breaks at either end.
std::string_view Trim(std::string_view text);
// With a blank for each CR, LF and zero octet.
std::string OneLine(std::string_view text);
std::string Upper(std::string_view text);
std::string OnlyDigits(std::string_view text);
bool EqualNoCase(std::string_view a, std::string_view b);
bool StartsNoCase(std::string_view text, std::string_view beginning);
bool ContainsNoCase(std::string_view text, std::string_view wanted);
std::size_t FindNoCase(std::string_view text, std::string_view wanted, std::size_t from = 0);
void ReplaceAll(std::string& text, std::string_view from, std::string_view to);
void ReplaceAllNoCase(std::string& text, std::string_view from, std::string_view to);
std::vector<std::string_view> Split(std::string_view text, std::string_view separator);

// The decimal number at the start, after blanks and with an optional sign. Digits beyond the range of 32 bits
// saturate.
std::optional<std::int32_t> FindInt(std::string_view text);
// 0 when there is none.
std::int32_t ToInt(std::string_view text);
