#include "smpp/SmppReceipts.h"

#include "Common/SmppPdu/TLVTags.h"
#include "foundation/CodePage.h"

#include <optional>
#include <string>
#include <utility>

namespace {

constexpr std::size_t kMostHeld = 256;
constexpr std::int32_t kMessageType = 0x3C;  // of esm_class
constexpr std::int32_t kReceiptType = 0x04;

std::optional<SmsReceipt> ReceiptIn(const CSmsMessageX& message, Clock& clock) {
    std::optional<SmsReceipt> receipt = ParseReceipt(ToAnsi(message.Data), clock);
    if (receipt && receipt->id.empty()) receipt.reset();
    return receipt;
}

}  // namespace

void SmppReceipts::Take(CSmsMessageX message, bool awaited) {
    const std::optional<SmsReceipt> receipt = ReceiptIn(message, *clock_);
    const bool applied = receipt && Apply(*receipt);
    if (TakeParameters(message, applied, awaited) || applied) return;
    if ((message.ESM & kMessageType) != kReceiptType) {
        received_->Add(std::move(message));
    } else if (receipt) {
        Hold(*receipt, std::move(message));
    } else {
        GiveAsReport(std::move(message));
    }
}

bool SmppReceipts::Apply(const SmsReceipt& receipt) {
    const auto reference = reports_->ApplyReceipt(receipt);
    if (!reference) return false;
    log_->Log(logmask::kActivity, "New deliveryreport received for message [%s]\n", reference->c_str());
    return true;
}

// True when the optional parameters make the message a receipt; one without a state is dropped.
bool SmppReceipts::TakeParameters(CSmsMessageX& message, bool applied, bool awaited) {
    const CTLVRecord* id = message.TlvRecords.Find(tlv::kReceiptedMessageId);
    if (id == nullptr) return false;
    const CTLVRecord* state = message.TlvRecords.Find(tlv::kMessageState);
    if (state == nullptr || applied) return true;
    SmsReceipt receipt;
    receipt.id = std::string(id->text.begin(), id->text.end());
    receipt.status = state->byteValue;
    if (IsCompletedStatus(receipt.status)) {
        receipt.completedTime = static_cast<std::int32_t>(clock_->Now());
    }
    if (Apply(receipt)) return true;
    if (awaited) {
        Hold(receipt, std::move(message));
    } else {
        reports_->Update(receipt.id, receipt.status, receipt.completedTime, 0);
    }
    return true;
}

void SmppReceipts::Hold(const SmsReceipt& receipt, CSmsMessageX message) {
    if (held_.size() >= kMostHeld) {
        GiveAsReport(std::move(message));
    } else {
        held_.push_back({receipt, std::move(message), clock_->Ticks()});
    }
}

void SmppReceipts::GiveAsReport(CSmsMessageX message) {
    message.Format = sms::asMESSAGEFORMAT_REPORT;
    received_->Add(std::move(message));
}

void SmppReceipts::TryAgain(std::uint32_t longest) {
    if (held_.empty()) return;
    const std::uint32_t now = clock_->Ticks();
    std::deque<Held> waiting;
    waiting.swap(held_);
    for (Held& held : waiting) {
        if (Apply(held.receipt)) continue;
        if (now - held.since < longest) {
            held_.push_back(std::move(held));
        } else {
            GiveAsReport(std::move(held.message));
        }
    }
}
