#include "foundation/serial/AtReply.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <utility>

namespace {

struct FinalResult {
    std::string_view text;
    AtStatus status;
    ResultCode code;
    bool endsLines = false;    // also ends a reply of many lines
    bool isBeginning = false;  // more may follow in the line
};

// In the order in which they are looked for. "+CMS ERROR" and "+CME ERROR" get their code from the number.
constexpr auto kFinalResults = std::to_array<FinalResult>({
    {"OK", AtStatus::kOk, result::Success, true},
    {"CONNECT", AtStatus::kConnect, result::Success, false, true},
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

// Final results that differ from those above, as whole lines.
constexpr auto kErrorLines = std::to_array<FinalResult>({
    {"+CMS ERROR", AtStatus::kError, result::ModemError, true, true},
    {"+CME ERROR", AtStatus::kError, result::ModemError, true, true},
    {"COMMAND ERROR", AtStatus::kError, result::ModemError, true},
});

const FinalResult* FinalResultOf(std::string_view line) {
    const auto fits = [line](const FinalResult& row) {
        return (row.isBeginning || line.size() == row.text.size()) && StartsNoCase(line, row.text);
    };
    for (const auto table :
         {std::span<const FinalResult>(kFinalResults), std::span<const FinalResult>(kErrorLines)}) {
        const auto row = std::ranges::find_if(table, fits);
        if (row != table.end()) return &*row;
    }
    return nullptr;
}

struct UnsolicitedLine {
    std::string_view beginning;
    bool bringsText = false;  // in the line behind it
};

// 3GPP TS 27.005 section 3.4, 27.007, and the makers' own, which begin with "^".
constexpr auto kUnsolicitedLines = std::to_array<UnsolicitedLine>({
    {"^"},       {"RING"},   {"+CRING:"},     {"+CLIP:"},      {"+CCWA:"},      {"+COLP:"},     {"+CMTI:"},
    {"+CDSI:"},  {"+CBMI:"}, {"+CMT:", true}, {"+CDS:", true}, {"+CBM:", true}, {"+CREG:"},     {"+CGREG:"},
    {"+CEREG:"}, {"+CPIN:"}, {"+CUSD:"},      {"+CSSI:"},      {"+CSSU:"},      {"+CIEV:"},     {"+CGEV:"},
    {"+CTZV:"},  {"+CTZE:"}, {"+CTZU:"},      {"+CALA:"},      {"+PBREADY"},    {"CALL READY"}, {"SMS READY"},
});

bool BeginsWith(std::string_view line, std::string_view beginning) {
    return !beginning.empty() && StartsNoCase(line, beginning);
}

}  // namespace

bool EndsReply(std::string_view line, std::string_view expected) {
    return ClassifyReply(line, expected).status > AtStatus::kUnexpected;
}

bool IsFinalResult(std::string_view line) { return FinalResultOf(line) != nullptr; }

bool EndsLines(std::string_view line) {
    const FinalResult* const row = FinalResultOf(line);
    return row != nullptr && row->endsLines;
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

bool AtUnsolicited::Takes(std::string_view line, std::string_view expected) {
    if (std::exchange(textFollows_, false)) return true;
    const auto row = std::ranges::find_if(
        kUnsolicitedLines, [&](const UnsolicitedLine& known) { return BeginsWith(line, known.beginning); });
    if (row == kUnsolicitedLines.end()) return false;
    if (BeginsWith(expected, row->beginning) && BeginsWith(line, expected)) return false;
    textFollows_ = row->bringsText;
    return true;
}
