#include "foundation/ErrorTexts.h"

#include <algorithm>
#include <array>
#include <functional>

namespace {

struct Row {
    std::int32_t code;
    std::string_view text;
};

constexpr auto kRows = std::to_array<Row>({
#define RESULT(code, name, text) {code, text},
#define TEXT_ONLY(code, text) {code, text},
#include "foundation/ErrorTexts.inc"
});

static_assert(std::ranges::adjacent_find(kRows, std::ranges::greater_equal{}, &Row::code) == kRows.end(),
              "rows must ascend, each code once");

}  // namespace

std::string_view DescribeError(std::int32_t code) noexcept {
    const auto row = std::ranges::lower_bound(kRows, code, {}, &Row::code);
    return row != kRows.end() && row->code == code ? row->text : "Generic Error";
}

std::string DescribeErrorWithNumber(std::int32_t code) {
    return "Error #" + std::to_string(code) + ": " + std::string(DescribeError(code));
}
