// The session as a whole: arbitrary octets from the server, in any pieces, between ticks and messages.
#include "Fuzz.h"
#include "smpp/SmppSession.h"
#include "support/VirtualClock.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    VirtualClock clock;
    CKorBase log("Fuzz", clock);
    SmppSettings settings;
    CSmsDeliveryReports reports(clock);
    CSmsMessagesX received(clock, 3600);
    CSmppSession session(log, settings, reports, received, clock);
    session.StartBind();
    if ((data[0] & 1) != 0) session.OnBytes({"\0\0\0\x11\x80\0\0\x09\0\0\0\0\0\0\0\x01\0", 17});
    const std::size_t piece = 1 + data[1] % 64;
    int count = 0;
    for (std::size_t at = 2; at < size; at += piece) {
        const std::string reference = std::to_string(count++);
        reports.RecordSent(reference, ReportWanted::kSubmitRequested);
        session.Queue({std::string(20, '\0'), reference, true});
        session.OnTick();
        session.OnBytes(TextOf(data + at, std::min(piece, size - at)));
        clock.Sleep(data[at] * 100U);
        session.Output().clear();
    }
    session.OnClosed();
    for (int i = 0; i < count; ++i) {  // nothing vanishes without a result
        if (reports.Query(std::to_string(i))->status == sms::asDELIVERYSTATUS_SUBMITREQUESTED) std::abort();
    }
    (void)received.Count();
    return 0;
}
