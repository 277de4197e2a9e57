// Delivery receipts among the received messages: finds the report that each is for, and holds those that may
// have overtaken the response which names their message.
#pragma once
#include "foundation/KorBase.h"
#include "smpp/SmppWindow.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>

class SmppReceipts {
  public:
    SmppReceipts(CKorBase& log, CSmsDeliveryReports& reports, CSmsMessagesX& received, Clock& clock,
                 const SmppWindow& inFlight)
        : log_(&log), reports_(&reports), received_(&received), clock_(&clock), inFlight_(&inFlight) {}

    // Takes a received message: a receipt goes to its report, what is none is given as a message. A receipt
    // that is nobody's is held while it may be for a submission in flight.
    void Take(CSmsMessageX message);

    // Tries those again that wait for one of the answers.
    void TakeAnswers(std::span<const SubmitAnswer> answers);

    // Decides about those that have seen the end of every submission that was in flight when they came.
    void Settle();

    // Decides about all.
    void Close();

  private:
    // A message with the receipts in it: that of its text, and that of its optional parameters.
    struct Candidate {
        CSmsMessageX message;
        bool isMarked = false;  // as a receipt, by esm_class or a receipted_message_id
        bool hasState = false;  // among the parameters
        std::optional<SmsReceipt> text, parameters;
        std::uint32_t since = 0;  // tick
    };
    using Number = std::uint64_t;  // in the order of arrival

    Candidate Read(CSmsMessageX message) const;
    bool Apply(const Candidate& candidate);
    std::optional<std::string> Find(const Candidate& candidate, ReceiptMatch match);
    void Hold(Candidate candidate);
    void Decide(Candidate candidate);
    void DecideOldest();
    Candidate Release(std::map<Number, Candidate>::iterator held);
    template <class Do>
    void ForEachHash(const Candidate& candidate, Do act) const;

    CKorBase* log_;
    CSmsDeliveryReports* reports_;
    CSmsMessagesX* received_;
    Clock* clock_;
    const SmppWindow* inFlight_;
    bool hasMatched_ = false;  // a receipt, without guessing
    Number next_ = 0;
    std::map<Number, Candidate> held_;
    std::set<std::pair<std::uint32_t, Number>> byAnswer_;  // hash of an id that an answer may bring
};
