#include "foundation/serial/AtReply.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace {

struct FinalResult {
    std::string_view text;
    AtStatus status;
    ResultCode code;
    bool endsLines = false;  // also ends a reply of many lines
};

// In the order in which they are looked for. "+CMS ERROR" and "+CME ERROR" get their code from the number.
constexpr auto kFinalResults = std::to_array<FinalResult>({
    {"OK", AtStatus::kOk, result::Success, true},
    {"CONNECT", AtStatus::kConnect, result::Success},
    {"ERROR", AtStatus::kError, result::ModemError, true},
    {"NO DIALTONE", AtStatus::kNoDialtone, result::ModemNoDialtone},
    {"NO CARRIER", AtStatus::kNoCarrier, result::ModemNoCarrier},
    {"NO ANSWER", AtStatus::kNoAnswer, result::ModemNoAnswer},
    {"BUSY", AtStatus::kBusy, result::ModemBusy},
});

struct ErrorNumber {
    std::int32_t number;
    ResultCode code;
};

// +CMS ERROR, 3GPP TS 27.005 section 3.2.5 and TS 24.011 annex E.
constexpr auto kCmsErrors = std::to_array<ErrorNumber>({
    {27, result::InvalidRecipient},
    {28, result::InvalidRecipient},
    {38, result::NetworkBusy},
    {310, result::NoSim},
    {311, result::PinRequired},
    {321, result::StorageUnavailable},
    {330, result::SmscNotSet},
    {512, result::NetworkBusy},
    {513, result::NetworkBusy},
    {515, result::NetworkBusy},
    {535, result::NetworkBusy},
});

// +CME ERROR, 3GPP TS 27.007 section 9.2.
constexpr auto kCmeErrors = std::to_array<ErrorNumber>({
    {10, result::NoSim},
    {11, result::PinRequired},
    {14, result::NetworkBusy},
});

struct ErrorFamily {
    std::string_view text;
    std::span<const ErrorNumber> numbers;
};
constexpr auto kErrorFamilies =
    std::to_array<ErrorFamily>({{"+CMS ERROR", kCmsErrors}, {"+CME ERROR", kCmeErrors}});

ResultCode ErrorCode(std::string_view upper) {
    for (const ErrorFamily& family : kErrorFamilies) {
        const std::size_t at = upper.find(family.text);
        if (at == std::string_view::npos) continue;
        std::string_view rest = upper.substr(at + family.text.size());
        rest = rest.substr(std::min(rest.size(), rest.find_first_not_of(": \t")));
        const auto row = std::ranges::find(family.numbers, ToInt(rest), &ErrorNumber::number);
        return row != family.numbers.end() ? row->code : result::ModemError;
    }
    return result::ModemError;
}

}  // namespace

bool EndsReply(std::string_view line, std::string_view expected) {
    return ClassifyReply(line, expected).status > AtStatus::kUnexpected;
}

bool EndsLines(std::string_view line) {
    const std::string upper = Upper(line);
    return std::ranges::any_of(kFinalResults, [&](const FinalResult& row) {
        return row.endsLines && upper.find(row.text) != std::string::npos;
    });
}

AtOutcome ClassifyReply(std::string_view reply, std::string_view expected) {
    if (reply.empty()) return {AtStatus::kNone, result::ModemNoResponse};
    const std::string upper = Upper(reply);
    for (const FinalResult& row : kFinalResults) {
        if (upper.find(row.text) == std::string::npos) continue;
        return {row.status, row.status == AtStatus::kError ? ErrorCode(upper) : row.code};
    }
    if (!expected.empty() && upper.find(Upper(expected)) != std::string::npos) {
        return {AtStatus::kExpected, result::Success};
    }
    return {AtStatus::kUnexpected, result::ModemUnexpectedResponse};
}
