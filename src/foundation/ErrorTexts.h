// The fixed English text of every result code.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <string>
#include <string_view>

// "Generic Error" for a code without a text. Never fails, never allocates.
std::string_view DescribeError(std::int32_t code) noexcept;
inline std::string_view DescribeError(ResultCode code) noexcept { return DescribeError(code.Number()); }

// "Error #<code>: " and the text.
std::string DescribeErrorWithNumber(std::int32_t code);
