#include "http/HttpVerdict.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view kNoCredit = "ERR: 301";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool Has(std::string_view reply, std::string_view text) {
    return !text.empty() && reply.find(text) != std::string_view::npos;
}

// Behind a byte order mark or not.
bool IsNonZeroNumber(std::string_view reply) {
    if (reply.starts_with(kByteOrderMark)) reply.remove_prefix(kByteOrderMark.size());
    std::string_view digits = Trim(reply);
    if (digits.starts_with('-') || digits.starts_with('+')) digits.remove_prefix(1);
    return std::ranges::all_of(digits, IsDigit) &&
           std::ranges::any_of(digits, [](char c) { return c != '0'; });
}

}  // namespace

ResultCode JudgeHttpReply(const HttpProviderSettings& settings, std::string_view reply) {
    if (Has(reply, kNoCredit)) return result::SmppNoCredits;
    if (Has(reply, settings.errorResponse)) return result::HttpProviderError;
    const bool isSuccess =
        settings.successResponse.empty() ? IsNonZeroNumber(reply) : Has(reply, settings.successResponse);
    return isSuccess ? result::Success : result::HttpProviderUnknown;
}
