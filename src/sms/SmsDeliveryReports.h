// The delivery reports of sent messages, found by the reference that `Send` returned or by the provider's id.
#pragma once
#include "frame/KorBase.h"
#include "sms/SmsConstants.h"
#include "sms/SmsReceipt.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

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

class CSmsDeliveryReports {
  public:
    explicit CSmsDeliveryReports(Clock& clock = SystemClock()) : clock_(&clock) {}

    // Enters a sent message, replacing a report of the same reference.
    void RecordSent(const std::string& reference, ReportWanted wanted);

    // Names the identifier under which the provider's receipts speak of the reference.
    void RecordProviderReference(const std::string& reference, const std::string& providerReference);

    // The answer to a submission: the new status, and the provider's identifier unless it is empty.
    void RecordAnswer(const std::string& reference, std::int32_t status,
                      const std::string& providerReference);

    // Puts a final or intermediate state on the reference's report; makes the report when there is none, so
    // that a status that the network has handed over is not lost. The completed time is kept for final states
    // only.
    void Update(const std::string& reference, std::int32_t status, std::int32_t completedTime,
                std::int32_t statusCode);

    // Changes the status of an existing report only.
    void SetStatus(const std::string& reference, std::int32_t status, std::int32_t statusCode);

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
    [[nodiscard]] std::int32_t Save(const std::string& file) const;

    // 0 or 33071. Adds to the reports held. `swapped`: the provider's reference stands first in each record.
    [[nodiscard]] std::int32_t Load(const std::string& file, bool swapped = false);

    // Parses and adds the records of a report file's text.
    void LoadText(std::string_view text, bool swapped = false);
    std::string SaveText() const;

  private:
    using Tree = std::map<std::string, CSmsDeliveryReport, std::less<>>;
    using Index =
        std::unordered_map<std::string, std::string>;  // an identifier -> the reference it stands for

    CSmsDeliveryReport* FindByProvider(std::string_view id);
    void NameProvider(CSmsDeliveryReport& report, const std::string& providerReference);
    void ForgetProvider(const CSmsDeliveryReport& report);
    void Insert(CSmsDeliveryReport report);

    Clock* clock_;
    mutable std::mutex lock_;
    Tree reports_;
    Index byProvider_;  // by the provider reference
    Index byLooseId_;   // the same without regard to case and leading zeros
    std::size_t providerReferenceLength_ = 0;
    std::int32_t oldest_ = INT32_MAX;  // no report was created before
    std::int32_t receiptFormat_ = sms::asSMPPDELIVERYREPORTFORMAT_HEX;
};
