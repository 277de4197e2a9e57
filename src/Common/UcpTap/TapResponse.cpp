#include "Common/UcpTap/TapResponse.h"

#include <algorithm>
#include <array>

namespace {

struct Meaning {
    std::string_view held;
    TapResult result;
};

// In the order in which they count.
constexpr auto kMeanings = std::to_array<Meaning>({
    {"essage submitted", TapResult::kAcknowledged},
    {"INVALID PAGER", TapResult::kInvalidPager},
    {"invalid pager", TapResult::kInvalidPager},
    {"not allowed", TapResult::kNotAllowed},
    {"NOT ALLOWED", TapResult::kNotAllowed},
    {"system problem", TapResult::kSystemProblem},
    {"SYSTEM PROBLEM", TapResult::kSystemProblem},
    {"\x06\r", TapResult::kAcknowledged},  // ACK
    {"\x1E\r", TapResult::kRefused},       // RS
    {"\x15\r", TapResult::kRefused},       // NAK
});

bool IsPrintable(char c) { return c >= 0x20 && c <= 0x7E; }

}  // namespace

TapResponse::TapResponse(std::string_view octets)
    : result_(TapResult::kNothing), text_(octets.begin(), std::ranges::find_if_not(octets, IsPrintable)) {
    const auto row = std::ranges::find_if(
        kMeanings, [&](const Meaning& known) { return octets.find(known.held) != std::string_view::npos; });
    if (row != kMeanings.end()) result_ = row->result;
}
