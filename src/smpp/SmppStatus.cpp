#include "smpp/SmppStatus.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

struct StatusRow {
    std::uint32_t status;
    ResultCode code;
};

constexpr auto kSubmitStatuses = std::to_array<StatusRow>({
    {0x00, result::Success},
    {0x0A, result::SmppRecipientRejected},  // ESME_RINVSRCADR
    {0x0B, result::SmppRecipientRejected},  // ESME_RINVDSTADR
    {0x14, result::SmppThrottled},          // ESME_RMSGQFUL
    {0x48, result::SmppRecipientRejected},  // ESME_RINVSRCTON
    {0x49, result::SmppRecipientRejected},  // ESME_RINVSRCNPI
    {0x50, result::SmppRecipientRejected},  // ESME_RINVDSTTON
    {0x51, result::SmppRecipientRejected},  // ESME_RINVDSTNPI
    {0x58, result::SmppThrottled},          // ESME_RTHROTTLED
    {0x401, result::SmppNoCredits},         // vendor range: no balance
    {0x402, result::SmppNoCredits},
});

constexpr auto kBindStatuses = std::to_array<StatusRow>({
    {0x00, result::Success},
    {0x0E, result::SmppInvalidPassword},  // ESME_RINVPASWD
    {0x0F, result::SmppInvalidSystemId},  // ESME_RINVSYSID
});

ResultCode CodeOf(std::span<const StatusRow> rows, std::uint32_t status, ResultCode otherwise) {
    const auto row = std::ranges::find(rows, status, &StatusRow::status);
    return row != rows.end() ? row->code : otherwise;
}

}  // namespace

ResultCode SubmitResultOf(std::uint32_t commandStatus) {
    return CodeOf(kSubmitStatuses, commandStatus, result::SmppSubmitRejected);
}

ResultCode BindResultOf(std::uint32_t commandStatus) {
    return CodeOf(kBindStatuses, commandStatus, result::SmppBindFailed);
}
