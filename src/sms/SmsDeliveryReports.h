// The delivery reports of sent messages, found by the reference that `Send` returned or by the provider's id.
#pragma once
#include "foundation/Clock.h"
#include "foundation/HashIndex.h"
#include "foundation/ResultCode.h"
#include "sms/SmsConstants.h"
#include "sms/SmsReceipt.h"

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One report. All times are seconds since 1970.
struct CSmsDeliveryReport {
    std::string reference;           // the key
    std::string providerReference;   // the SMSC's own identifier, when it differs
    std::int32_t status = 0;         // asDELIVERYSTATUS_...
    std::int32_t completedTime = 0;  // 0 while not completed
    std::int32_t statusCode = 0;     // the network's own code: receipt "err" field, GSM TP-Status
    std::int32_t extra = 0;          // saved and loaded unchanged
    std::int32_t createdTime = 0;
};

// How a sent message enters the store.
enum class ReportWanted {
    kNo,              // final at once: "Submitted"
    kYes,             // "Enroute" until a report arrives
    kSubmitRequested  // "Submit requested": queued, not yet answered
};

// The answer to a submission: the new status, and the provider's identifier unless it is empty.
struct SubmitAnswer {
    std::string reference;
    std::int32_t status = 0;
    std::string providerReference;
};

class CSmsDeliveryReports {
  public:
    explicit CSmsDeliveryReports(Clock& clock = SystemClock()) : clock_(&clock) {}

    // Enters a sent message, replacing a report of the same reference.
    void RecordSent(std::string_view reference, ReportWanted wanted);

    // Names the identifier under which the provider's receipts speak of the reference.
    void RecordProviderReference(std::string_view reference, std::string_view providerReference);

    // What several submissions were answered.
    void RecordAnswers(std::span<const SubmitAnswer> answers);

    // Puts a final or intermediate state on the reference's report; makes the report when there is none, so
    // that a status that the network has handed over is not lost. The completed time is kept for final states
    // only.
    void Update(std::string_view reference, std::int32_t status, std::int32_t completedTime,
                std::int32_t statusCode);

    // Changes the status of an existing report only.
    void SetStatus(std::string_view reference, std::int32_t status, std::int32_t statusCode);

    // Applies an SMPP receipt; the reference it was for, or nothing when none is known.
    std::optional<std::string> ApplyReceipt(const SmsReceipt& receipt);

    std::optional<CSmsDeliveryReport> Query(std::string_view reference) const;

    // The report of a message of several parts, whose references are joined by the separator: open while one
    // part is open, then the first state that is not "Delivered", with the latest time. Nothing when a part
    // is unknown.
    std::optional<CSmsDeliveryReport> QueryWhole(std::string_view references, char separator) const;

    void Remove(std::string_view reference);
    // Forgets reports that were created more than the given seconds ago.
    void RemoveOlderThan(std::int32_t seconds);
    void Clear();
    std::size_t Count() const;

    // asSMPPDELIVERYREPORTFORMAT_...: how receipts write their ids.
    void SetReceiptFormat(std::int32_t format);

    // 0 or 33070. The old file stays whole until the new one is written.
    ResultCode Save(const std::string& file) const;

    // 0 or 33071. Adds to the reports held. `swapped`: the provider's reference stands first in each record.
    ResultCode Load(const std::string& file, bool swapped = false);

    // Parses and adds the records of a report file's text.
    void LoadText(std::string_view text, bool swapped = false);
    std::string SaveText() const;

  private:
    // What finds a report. Provider references are hashed without regard to case and leading zeros, so that
    // one index finds them both as they are and loosely.
    enum class Key { kReference, kProvider };
    enum class Match { kExact, kLoose };
    struct Record {
        CSmsDeliveryReport report;
        bool isHeld = false;
    };

    HashIndex& IndexOf(Key key) { return indexes_[static_cast<std::size_t>(key)]; }
    const HashIndex& IndexOf(Key key) const { return indexes_[static_cast<std::size_t>(key)]; }
    static std::uint32_t HashOf(Key key, std::string_view text);
    const std::string& TextOf(Key key, std::uint32_t place) const;
    std::optional<std::uint32_t> PlaceOf(Key key, std::string_view text, Match match = Match::kExact) const;
    void Enter(Key key, std::uint32_t place);
    void Withdraw(Key key, std::uint32_t place);

    CSmsDeliveryReport* Find(std::string_view reference);
    CSmsDeliveryReport* FindByProvider(std::string_view id);
    std::uint32_t Insert(CSmsDeliveryReport report);
    void Erase(std::uint32_t place);
    void NameProvider(std::uint32_t place, std::string_view providerReference);
    void PutStatus(CSmsDeliveryReport& report, std::int32_t status, std::int32_t statusCode) const;

    Clock* clock_;
    mutable std::mutex lock_;
    std::deque<Record> records_;  // in places that stay
    std::vector<std::uint32_t> freePlaces_;
    std::array<HashIndex, 2> indexes_;  // by Key
    std::size_t providerReferenceLength_ = 0;
    std::int32_t oldest_ = INT32_MAX;  // no report was created before
    std::int32_t receiptFormat_ = sms::asSMPPDELIVERYREPORTFORMAT_HEX;
};
