// Delivery receipts among the received messages: finds the report that each is for, and holds those that
// overtook the response which names their message.
#pragma once
#include "foundation/KorBase.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <cstdint>
#include <deque>

class SmppReceipts {
  public:
    SmppReceipts(CKorBase& log, CSmsDeliveryReports& reports, CSmsMessagesX& received, Clock& clock)
        : log_(&log), reports_(&reports), received_(&received), clock_(&clock) {}

    // Takes a received message: first the receipt in its text, then the one in its optional parameters; what
    // is neither is given as a message. `awaited`: submissions are unanswered, so that a receipt that is
    // nobody's may be for one of them.
    void Take(CSmsMessageX message, bool awaited);

    // Tries the held ones again; one that is nobody's after 20 s is given as a message of format 30.
    void Retry() { TryAgain(kLongestHold); }
    // As Retry, and holds nothing any longer.
    void Close() { TryAgain(0); }

  private:
    static constexpr std::uint32_t kLongestHold = 20'000;  // ms, the time that a response may take

    struct Held {
        SmsReceipt receipt;
        CSmsMessageX message;
        std::uint32_t since;  // tick
    };

    bool Apply(const SmsReceipt& receipt);
    bool TakeParameters(CSmsMessageX& message, bool applied, bool awaited);
    void Hold(const SmsReceipt& receipt, CSmsMessageX message);
    void GiveAsReport(CSmsMessageX message);
    void TryAgain(std::uint32_t longest);

    CKorBase* log_;
    CSmsDeliveryReports* reports_;
    CSmsMessagesX* received_;
    Clock* clock_;
    std::deque<Held> held_;
};
