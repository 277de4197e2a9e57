// The delivery reports of sent messages, found by the reference that `Send` returned or by the provider's id.
#pragma once
#include "foundation/BriefMutex.h"
#include "foundation/Clock.h"
#include "foundation/HashIndex.h"
#include "foundation/ResultCode.h"
#include "foundation/TextFile.h"
#include "sms/PackedText.h"
#include "sms/SmsConstants.h"
#include "sms/SmsReceipt.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
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

// How far a receipt's id may be from the one that the server gave, each level with those before it.
enum class ReceiptMatch : std::uint8_t {
    kExact,   // converted when receipts are decimal; padded to the length of the server's ids, or as it is
    kLoose,   // without regard to case and leading zeros, when a single message has such an id
    kGuessed  // in the other base, when a single message has such an id, of six digits or more
};

// What stands for the provider's identifier of a message that was never answered. It names no message.
inline constexpr std::string_view kNoProviderReference = "N/A";

class CSmsDeliveryReports {
  public:
    explicit CSmsDeliveryReports(Clock& clock = SystemClock()) : clock_(&clock) {}

    // Enters a sent message, replacing a report of the same reference. The recipient is remembered as far as
    // IsOfAnother needs it, not saved.
    void RecordSent(std::string_view reference, ReportWanted wanted, std::string_view recipient = {});

    // Enters a sent message; false when its reference is taken.
    [[nodiscard]] bool RecordNew(std::string_view reference, ReportWanted wanted);

    // Names the identifier under which the provider's receipts speak of the reference.
    void RecordProviderReference(std::string_view reference, std::string_view providerReference);

    // What several submissions were answered.
    void RecordAnswers(std::span<const SubmitAnswer> answers);

    // Puts a final or intermediate state on the reference's report; makes the report when there is none, so
    // that a status that the network has handed over is not lost. The completed time is kept for final states
    // only.
    void Update(std::string_view reference, std::int32_t status, std::int32_t completedTime,
                std::int32_t statusCode);

    // Whether what the network reports under the reference cannot be of the message that has it: it was final
    // more than a day before the message was sent, or the last six digits of the recipient are others.
    bool IsOfAnother(std::string_view reference, std::string_view recipient,
                     std::int32_t completedTime) const;

    // Changes the status of an existing report only.
    void SetStatus(std::string_view reference, std::int32_t status, std::int32_t statusCode);

    // Applies an SMPP receipt; the reference it was for, or nothing when none is known.
    std::optional<std::string> ApplyReceipt(const SmsReceipt& receipt, ReceiptMatch match);

    // Keeps a receipt that is for no message under its own id; false when a sent message has that reference.
    [[nodiscard]] bool KeepForeign(const SmsReceipt& receipt);

    // Hashes of the ids in which an answer may name the receipt's message, as LooseHash makes them; the base
    // is not guessed.
    std::array<std::uint32_t, 2> AnswerHashes(const SmsReceipt& receipt) const;

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
    enum class Key : std::uint8_t { kReference, kProvider };

    // A report as it is held. References are mostly eight digits, server ids rarely more than eighteen
    // characters; longer ones lie in `longTexts_`.
    struct Record {
        std::int32_t status = 0, completedTime = 0, statusCode = 0, extra = 0, createdTime = 0;
        std::uint32_t recipientTail = 0;  // the last six digits behind a 1; 0 = not known
        PackedText<8> reference;
        PackedText<18> provider;
        bool isHeld = false;
        bool isSent = false;  // not only heard of
    };
    // What a loose look-up has found.
    struct Candidates {
        std::optional<std::uint32_t> place;
        bool areSeveral = false;
        std::optional<std::uint32_t> Only() const { return areSeveral ? std::nullopt : place; }
    };

    HashIndex& IndexOf(Key key) { return indexes_[static_cast<std::size_t>(key)]; }
    const HashIndex& IndexOf(Key key) const { return indexes_[static_cast<std::size_t>(key)]; }
    std::string_view TextOf(Key key, std::uint32_t place) const;
    void PutText(Key key, std::uint32_t place, std::string_view text);
    std::optional<std::uint32_t> PlaceOf(Key key, std::string_view text) const;
    std::optional<std::uint32_t> PlaceOf(Key key, std::string_view text, std::uint32_t hash) const;
    void FindLoosely(std::string_view providerReference, Candidates& found) const;
    CSmsDeliveryReport ReportAt(std::uint32_t place) const;

    std::uint32_t Insert(std::string_view reference, std::int32_t createdTime);
    std::uint32_t InsertNew(std::string_view reference, std::uint32_t hash, std::int32_t createdTime);
    void Erase(std::uint32_t place);
    void NameProvider(std::uint32_t place, std::string_view providerReference);
    void TakeProviderReference(std::uint32_t place, std::string_view providerReference);
    void PutSent(Record& record, ReportWanted wanted) const;
    void PutStatus(Record& record, std::int32_t status, std::int32_t statusCode) const;

    std::optional<std::string> AnswerForm(std::string_view receiptId) const;
    std::optional<std::uint32_t> PlaceOfReceipt(const SmsReceipt& receipt, ReceiptMatch match) const;
    std::optional<std::uint32_t> GuessedPlaceOf(std::string_view id) const;

    bool CopySlice(std::uint32_t& place, std::vector<CSmsDeliveryReport>& slice) const;
    bool Write(const TextSink& sink) const;
    void Add(std::string_view piece, bool swapped);
    // Adds the whole records at the start of the text and gives the place behind them; npos when the list
    // ends.
    std::size_t AddWhole(std::string_view text, bool swapped, bool isLast);

    Clock* clock_;
    mutable BriefMutex lock_;
    std::deque<Record> records_;  // in places that stay
    std::vector<std::uint32_t> freePlaces_;
    std::array<std::unordered_map<std::uint32_t, std::string>, 2> longTexts_;  // by Key, then by place
    std::array<HashIndex, 2> indexes_;                                         // by Key
    std::size_t providerReferenceLength_ = 0;  // of the newest report that has one
    std::int32_t newestNamed_ = INT32_MIN;     // when that report was created
    std::int32_t oldest_ = INT32_MAX;          // no report was created before
    std::int32_t receiptFormat_ = sms::asSMPPDELIVERYREPORTFORMAT_HEX;
};
