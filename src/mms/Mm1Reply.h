// What an MMS centre answers over MM1, and the units that say that a message has arrived.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <string>
#include <string_view>

struct Mm1Reply {
    ResultCode code = result::Success;
    std::uint32_t status = 0;  // of the response or of the retrieval; 0 when it gives none
    std::u16string text;       // in which the centre says more
    std::string messageId;
    std::string transactionId;
};

// Each is 22407 for no octets at all, 33302 for anything but a unit of the type that is due (the page of an
// access portal, say), 33763 for one that is damaged before what it says is clear, and 33761 to 33768 for a
// refusal.

// An m-send-conf. A status that can be read counts, whatever is missing behind it: the message has gone or
// not.
Mm1Reply ReadSendConf(std::string_view octets);

// An m-retrieve-conf; 33763 also for one whose message is damaged.
Mm1Reply ReadRetrieveConf(std::string_view octets);

// m-acknowledge-ind, the answer to a message that was fetched in a transaction of its own, and
// m-notifyresp-ind, that to its notification.
std::string AcknowledgeInd(std::string_view transactionId);
std::string NotifyRespInd(std::string_view transactionId);
