// Result codes: 32-bit numbers, 0 for success, each with one fixed English text.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// The named result codes, for example `result::NoMoreMessages` (33060).
namespace result {
#define RESULT(code, name, text) inline constexpr std::int32_t name = code;
#define CODE(code, name) inline constexpr std::int32_t name = code;
#define TEXT_ONLY(code, text)
#include "frame/ErrorTexts.inc"
#undef RESULT
#undef CODE
#undef TEXT_ONLY
}  // namespace result

// The text of any code; "Generic Error" for a code without one. Never fails, never allocates.
[[nodiscard]] std::string_view DescribeError(std::int32_t code) noexcept;

// "Error #<code>: " and the text.
[[nodiscard]] std::string DescribeErrorWithNumber(std::int32_t code);
