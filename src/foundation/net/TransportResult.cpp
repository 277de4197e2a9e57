#include "foundation/net/TransportResult.h"

#include "foundation/net/Stream.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    int outcome;
    ResultCode code;
};

constexpr auto kRows = std::to_array<Row>({
    {tcp::kSuccess, result::Success},
    {tcp::kConnectTimedOut, result::SocketTimedOut},
    {tcp::kClosedByPeer, result::SocketReset},
    {tcp::kAborted, result::SocketAborted},
});

}  // namespace

ResultCode TransportResult(int outcome) {
    const auto* const row = std::ranges::find(kRows, outcome, &Row::outcome);
    return row != kRows.end() ? row->code : result::SocketError;
}
