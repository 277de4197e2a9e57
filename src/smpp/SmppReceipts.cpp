#include "smpp/SmppReceipts.h"

#include "Common/SmppPdu/TLVTags.h"
#include "foundation/CodePage.h"
#include "sms/ReceiptIds.h"

#include <vector>

namespace {

constexpr std::int32_t kMessageType = 0x3C;  // of esm_class
constexpr std::int32_t kReceiptType = 0x04;
// More are not held for every submission in flight, however many a server sends.
constexpr std::size_t kHeldAtLeast = 16'384;
constexpr std::size_t kHeldPerSubmission = 4;

std::optional<SmsReceipt> ReceiptIn(const CSmsMessageX& message, bool isMarked, Clock& clock) {
    std::optional<SmsReceipt> receipt = ParseReceipt(ToAnsi(message.Data), clock);
    if (receipt && (receipt->id.empty() || !(isMarked || receipt->isWhole))) receipt.reset();
    return receipt;
}

void PutState(SmsReceipt& receipt, std::uint8_t state, Clock& clock) {
    receipt.status = state;
    if (!IsCompletedStatus(state)) {
        receipt.completedTime = 0;
    } else if (receipt.completedTime == 0) {
        receipt.completedTime = static_cast<std::int32_t>(clock.Now());
    }
}

}  // namespace

SmppReceipts::Candidate SmppReceipts::Read(CSmsMessageX message) const {
    Candidate candidate;
    const CTLVRecord* id = message.TlvRecords.Find(tlv::kReceiptedMessageId);
    const CTLVRecord* state = message.TlvRecords.Find(tlv::kMessageState);
    candidate.isMarked = id != nullptr || (message.ESM & kMessageType) == kReceiptType;
    candidate.hasState = state != nullptr;
    candidate.since = clock_->Ticks();
    candidate.text = ReceiptIn(message, candidate.isMarked, *clock_);
    const bool textHasState = candidate.text && candidate.text->hasState;
    if (id != nullptr && (state != nullptr || textHasState)) {
        // What the parameters do not tell, the text does.
        SmsReceipt& receipt = candidate.parameters.emplace(candidate.text.value_or(SmsReceipt{}));
        receipt.id = std::string(id->text.begin(), id->text.end());
        receipt.isPlainId = true;
        if (state != nullptr) PutState(receipt, state->byteValue, *clock_);
    }
    if (state != nullptr && candidate.text && !textHasState)
        PutState(*candidate.text, state->byteValue, *clock_);
    candidate.message = std::move(message);
    return candidate;
}

void SmppReceipts::Take(CSmsMessageX message) {
    Candidate candidate = Read(std::move(message));
    if (Apply(candidate)) return;
    const bool isReceipt = candidate.text || candidate.parameters;
    if (isReceipt && inFlight_->Size() != 0) {
        Hold(std::move(candidate));
    } else {
        Decide(std::move(candidate));
    }
}

// The parameters' id is the one that the server gave, so it goes before that of the text.
std::optional<std::string> SmppReceipts::Find(const Candidate& candidate, ReceiptMatch match) {
    std::optional<std::string> reference;
    if (candidate.parameters) reference = reports_->ApplyReceipt(*candidate.parameters, match);
    if (!reference && candidate.text) reference = reports_->ApplyReceipt(*candidate.text, match);
    return reference;
}

// What is not marked may be a message that only looks like a receipt, so its id must be exact. Another base
// is guessed only while nothing tells that the server writes its ids in one way.
bool SmppReceipts::Apply(const Candidate& candidate) {
    std::optional<std::string> reference = Find(candidate, ReceiptMatch::kExact);
    if (!reference && candidate.isMarked) reference = Find(candidate, ReceiptMatch::kLoose);
    hasMatched_ = hasMatched_ || reference;
    if (!reference && candidate.isMarked && !hasMatched_ && inFlight_->Size() == 0)
        reference = Find(candidate, ReceiptMatch::kGuessed);
    if (!reference) return false;
    log_->Log(logmask::kActivity, "New deliveryreport received for message [%s]\n", reference->c_str());
    return true;
}

// What is nobody's: with an id and a state among its parameters it is kept as a report under that id, with an
// id alone it is dropped; any other receipt is given as a message of format 30.
void SmppReceipts::Decide(Candidate candidate) {
    CSmsMessageX& message = candidate.message;
    if (candidate.parameters && candidate.hasState && reports_->KeepForeign(*candidate.parameters)) return;
    const bool isBareId = message.TlvRecords.Find(tlv::kReceiptedMessageId) != nullptr &&
                          !candidate.hasState && !candidate.text;
    if (isBareId) return;
    if (candidate.isMarked) message.Format = sms::asMESSAGEFORMAT_REPORT;
    received_->Add(std::move(message));
}

// --- those that are held

template <class Do>
void SmppReceipts::ForEachHash(const Candidate& candidate, Do act) const {
    for (const auto* receipt : {&candidate.text, &candidate.parameters}) {
        if (!*receipt) continue;
        for (const std::uint32_t hash : reports_->AnswerHashes(**receipt)) act(hash);
    }
}

void SmppReceipts::Hold(Candidate candidate) {
    if (held_.size() >= kHeldAtLeast + kHeldPerSubmission * inFlight_->Size()) DecideOldest();
    ForEachHash(candidate, [this](std::uint32_t hash) { byAnswer_.emplace(hash, next_); });
    held_.emplace_hint(held_.end(), next_++, std::move(candidate));
}

SmppReceipts::Candidate SmppReceipts::Release(std::map<Number, Candidate>::iterator held) {
    ForEachHash(held->second, [&](std::uint32_t hash) { byAnswer_.erase({hash, held->first}); });
    Candidate candidate = std::move(held->second);
    held_.erase(held);
    return candidate;
}

void SmppReceipts::TakeAnswers(std::span<const SubmitAnswer> answers) {
    if (held_.empty()) return;
    for (const SubmitAnswer& answer : answers) {
        const std::uint32_t hash = LooseHash(answer.providerReference);
        std::vector<Number> waiting;
        for (auto at = byAnswer_.lower_bound({hash, 0}); at != byAnswer_.end() && at->first == hash; ++at)
            waiting.push_back(at->second);
        for (const Number number : waiting) {
            const auto held = held_.find(number);
            if (held != held_.end() && Apply(held->second)) (void)Release(held);
        }
    }
}

void SmppReceipts::DecideOldest() {
    Candidate candidate = Release(held_.begin());
    if (!Apply(candidate)) Decide(std::move(candidate));
}

void SmppReceipts::Settle() {
    if (held_.empty()) return;
    const std::uint32_t now = clock_->Ticks();
    const std::optional<std::uint32_t> longest = inFlight_->LongestWait(now);
    while (!held_.empty() && (!longest || now - held_.begin()->second.since > *longest)) DecideOldest();
}

void SmppReceipts::Close() {
    while (!held_.empty()) DecideOldest();
}
