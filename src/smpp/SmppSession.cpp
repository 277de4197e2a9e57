#include "smpp/SmppSession.h"

#include "Common/SmppPdu/TLVTags.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "smpp/SmppCharSet.h"

#include <array>

namespace {

constexpr std::size_t kLargestPdu = 65536;
constexpr std::size_t kSequenceOffset = 12;
constexpr std::uint32_t kResponseTime = 20'000;
constexpr std::uint32_t kServiceInterval = 10'000;
constexpr std::uint32_t kMostKeepAlives = 10;
constexpr std::uint32_t kLastSequence = 0x7FFFFFFF;
constexpr std::size_t kMostHeldReceipts = 256;
constexpr std::size_t kOutputMark = std::size_t{1} << 20;
constexpr std::int32_t kReportsKept = 86'400;
constexpr std::uint32_t kIdleTick = 1000;
constexpr std::uint8_t kReceiptBit = 0x04;
constexpr std::uint32_t kUnansweredStatus = 0xFFFFFFFF;
constexpr const char* kNoMessageId = "N/A";

struct StatusRow {
    std::uint32_t status;
    ResultCode code;
};

constexpr auto kSubmitStatuses = std::to_array<StatusRow>({
    {0x0A, result::SmppRecipientRejected},  // ESME_RINVSRCADR
    {0x0B, result::SmppRecipientRejected},  // ESME_RINVDSTADR
    {0x14, result::SmppThrottled},          // ESME_RMSGQFUL
    {0x48, result::SmppRecipientRejected},  // ESME_RINVSRCTON
    {0x49, result::SmppRecipientRejected},  // ESME_RINVSRCNPI
    {0x50, result::SmppRecipientRejected},  // ESME_RINVDSTTON
    {0x51, result::SmppRecipientRejected},  // ESME_RINVDSTNPI
    {0x58, result::SmppThrottled},          // ESME_RTHROTTLED
    {0x401, result::SmppNoCredits},         // vendor range: no balance
    {0x402, result::SmppNoCredits},
});

std::uint32_t ReadLength(std::string_view octets) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(octets[i]);
    return value;
}

std::span<const std::uint8_t> Octets(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

ResultCode SubmitResult(std::uint32_t commandStatus) {
    if (commandStatus == 0) return result::Success;
    const auto* const row = std::ranges::find(kSubmitStatuses, commandStatus, &StatusRow::status);
    return row != kSubmitStatuses.end() ? row->code : result::SmppSubmitRejected;
}

ResultCode BindResultOf(std::uint32_t commandStatus) {
    switch (commandStatus) {
        case 0x00:
            return result::Success;
        case 0x0E:
            return result::SmppInvalidPassword;
        case 0x0F:
            return result::SmppInvalidSystemId;
        default:
            return result::SmppBindFailed;
    }
}

CSmppSession::CSmppSession(CKorBase& log, const SmppSettings& settings, CSmsDeliveryReports& reports,
                           CSmsMessagesX& received, Clock& clock)
    : log_(&log),
      settings_(&settings),
      reports_(&reports),
      received_(&received),
      clock_(&clock),
      bindResult_(result::SmppTimedOut),
      lastKeepAlive_(clock.Ticks()),
      lastService_(clock.Ticks()),
      lastTick_(clock.Ticks()),
      dataReference_(static_cast<std::uint32_t>(clock.Now())) {}

std::uint32_t CSmppSession::NextSequence() {
    const std::uint32_t sequence = sequence_;
    sequence_ = sequence_ == kLastSequence ? 1 : sequence_ + 1;
    return sequence;
}

template <class Pdu>
void CSmppSession::Trace(Pdu& pdu) {
    if (!log_->IsLogging() || settings_->dumpFlags == 0) return;
    std::string text;
    pdu.SetDumpFlags(settings_->dumpFlags);
    pdu.Dump(text);
    log_->LogSized(logmask::kVerbatim, text.size() + 2048, "%s\n", text.c_str());
}

template <class Pdu>
void CSmppSession::Send(Pdu& pdu, const char* name) {
    pdu.Encode();
    log_->Log(logmask::kVerbatim, "Sending [%s]...\n", name);
    Trace(pdu);
    const auto octets = pdu.Data();
    output_.append(reinterpret_cast<const char*>(octets.data()), octets.size());
}

template <class Pdu>
void CSmppSession::Answer(const char* request, const char* response) {
    log_->Log(logmask::kVerbatim, "Receiving [%s]...\n", request);
    Pdu pdu;
    pdu.sequence_number = header_.sequence_number;
    Send(pdu, response);
}

// --- bind and unbind

void CSmppSession::StartBind() {
    state_ = State::kBinding;
    unansweredKeepAlives_ = 0;
    sequence_ = 1;
    const auto bind = [this](auto pdu, const char* name) {
        pdu->sequence_number = NextSequence();
        pdu->system_id = settings_->systemId;
        pdu->password = settings_->systemPassword;
        pdu->system_type = settings_->systemType;
        pdu->interface_version = settings_->InterfaceVersion();
        pdu->addr_ton = static_cast<std::uint8_t>(settings_->sourceTon);
        pdu->addr_npi = static_cast<std::uint8_t>(settings_->sourceNpi);
        pdu->address_range = settings_->addressRange;
        pdu->tlvs = settings_->transmitTlvs;
        Send(*pdu, name);
    };
    switch (static_cast<BindMode>(settings_->systemMode)) {
        case BindMode::kTransmitter:
            bind(std::make_unique<CSmppBindTransmitter>(), "bind_transmitter");
            break;
        case BindMode::kReceiver:
            bind(std::make_unique<CSmppBindReceiver>(), "bind_receiver");
            break;
        default:
            bind(std::make_unique<CSmppBindTransceiver>(), "bind_transceiver");
            break;
    }
}

void CSmppSession::StartUnbind() {
    if (state_ != State::kBound) return;
    state_ = State::kUnbinding;
    CSmppUnbind pdu;
    pdu.sequence_number = NextSequence();
    Send(pdu, "unbind");
}

void CSmppSession::Close(const char* reason) {
    if (state_ == State::kClosed) return;
    log_->Log(logmask::kVerbatim | logmask::kActivity, "%s", reason);
    state_ = State::kClosed;
}

void CSmppSession::OnClosed() {
    state_ = State::kClosed;
    RecordAnswers();  // of octets whose reading ended in an exception
    const auto fail = [this](std::string_view reference) {
        reports_->SetStatus(reference, sms::asDELIVERYSTATUS_FAILED, result::SmppNotBound.Number());
    };
    inFlight_.Expire(clock_->Ticks(), 0, [&](const SmppInFlight& submit) { fail(submit.reference); });
    for (; !queue_.IsEmpty(); queue_.Pop()) fail(queue_.Front().reference);
    RetryReceipts(true);
}

// --- reading

void CSmppSession::OnBytes(std::string_view octets) {
    // Whole PDUs are taken from where they lie; only a piece that is left over is kept.
    const bool kept = !input_.empty();
    if (kept) input_.append(octets);
    std::string_view rest = kept ? std::string_view(input_) : octets;
    while (state_ != State::kClosed && rest.size() >= 4) {
        const std::uint32_t length = ReadLength(rest);
        if (length < CSmppPdu::kHeaderSize || length > kLargestPdu) {
            log_->Log(logmask::kVerbatim | logmask::kActivity,
                      "Invalid PDU length [0x%08X], closing the session\n", static_cast<unsigned>(length));
            state_ = State::kClosed;
            break;
        }
        if (rest.size() < length) break;
        Dispatch(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    input_ = std::string(rest);
    RecordAnswers();
}

// Receipts that waited for one of the answers are tried again.
void CSmppSession::RecordAnswers() {
    if (answers_.empty()) return;
    reports_->RecordAnswers(answers_);
    answers_.clear();
    if (!held_.empty()) RetryReceipts(false);
}

void CSmppSession::Dispatch(std::string_view octets) {
    const auto word = [octets](std::size_t at) { return ReadLength(octets.substr(at)); };
    header_.command_id = word(4);
    header_.command_status = word(8);
    header_.sequence_number = word(12);
    switch (header_.command_id) {
        case smpp::kBindReceiver | smpp::kResponse:
        case smpp::kBindTransmitter | smpp::kResponse:
        case smpp::kBindTransceiver | smpp::kResponse: {
            CSmppBindTransceiverResp pdu;
            pdu.SetData(Octets(octets));
            pdu.Decode();
            const char* name = header_.command_id == CSmppBindReceiverResp::kCommandId ? "bind_receiver_resp"
                               : header_.command_id == CSmppBindTransmitterResp::kCommandId
                                   ? "bind_transmitter_resp"
                                   : "bind_transceiver_resp";
            log_->Log(logmask::kVerbatim, "Receiving [%s]...\n", name);
            Trace(pdu);
            OnBindResponse();
            break;
        }
        case smpp::kSubmitSm | smpp::kResponse:
            OnSubmitResponse(octets);
            break;
        case smpp::kEnquireLink:
            Answer<CSmppEnquireLinkResp>("enquire_link", "enquire_link_resp");
            break;
        case smpp::kEnquireLink | smpp::kResponse:
            log_->Log(logmask::kVerbatim, "Receiving [enquire_link_resp]...\n");
            unansweredKeepAlives_ = 0;
            break;
        case smpp::kUnbind:
            Answer<CSmppUnbindResp>("unbind", "unbind_resp");
            Close("Server has unbound the session\n");
            break;
        case smpp::kUnbind | smpp::kResponse:
            log_->Log(logmask::kVerbatim, "Receiving [unbind_resp]...\n");
            if (state_ == State::kUnbinding) state_ = State::kClosed;
            break;
        case smpp::kDeliverSm:
            OnDeliver(octets);
            break;
        case smpp::kDataSm:
            OnData(octets);
            break;
        case smpp::kGenericNack: {
            log_->Log(logmask::kVerbatim, "Receiving [generic_nack]...\n");
            const auto submit = inFlight_.Complete(header_.sequence_number);
            if (!submit) break;
            Finish(*submit, header_.command_status != 0 ? header_.command_status : 0xFF, kNoMessageId);
            break;
        }
        default:
            Answer<CSmppGenericNack>("unknown pdu", "generic_nack");
            break;
    }
}

void CSmppSession::OnBindResponse() {
    if (state_ != State::kBinding) return;
    bindResult_ = BindResultOf(header_.command_status);
    state_ = bindResult_ == result::Success ? State::kBound : State::kClosed;
    lastKeepAlive_ = clock_->Ticks();
}

void CSmppSession::OnSubmitResponse(std::string_view octets) {
    log_->Log(logmask::kVerbatim, "Receiving [submit_sm_resp]...\n");
    submitResp_.SetData(Octets(octets));
    submitResp_.Decode();
    Trace(submitResp_);
    log_->Log(logmask::kVerbatim, "Message Reference [%s]\n", submitResp_.message_id.c_str());
    if (const auto submit = inFlight_.Complete(header_.sequence_number)) {
        Finish(*submit, header_.command_status, submitResp_.message_id);
    }
}

void CSmppSession::Finish(const SmppInFlight& submit, std::uint32_t status, const std::string& messageId) {
    if (status == 0) {
        answers_.push_back(
            {submit.reference,
             submit.wantsReport ? sms::asDELIVERYSTATUS_ENROUTE : sms::asDELIVERYSTATUS_SUBMITTED,
             messageId});
        return;
    }
    if (status == kUnansweredStatus) {
        log_->Log(logmask::kVerbatim, "Message Reference [%s]\n", messageId.c_str());
        reports_->SetStatus(submit.reference, sms::asDELIVERYSTATUS_FAILED, -1);
        return;
    }
    const ResultCode code = SubmitResult(status);
    log_->Log(logmask::kVerbatim | logmask::kActivity, "Sending failed (%s)\n", DescribeError(code).data());
    reports_->SetStatus(
        submit.reference,
        code == result::SmppNoCredits ? sms::asDELIVERYSTATUS_NOCREDITS : sms::asDELIVERYSTATUS_REJECTED,
        code.Number());
}

template <class Body>
CSmsMessageX CSmppSession::MessageOf(const Body& body, const std::u16string& text,
                                     const CTLVRecords& tlvs) const {
    CSmsMessageX message;
    const auto number = [](const std::string& digits, std::uint8_t ton) {
        return ton == 1 && !digits.empty() && digits.front() != '+' ? "+" + digits : digits;
    };
    message.Sender = number(body.source_addr, body.source_addr_ton);
    message.Recipient = number(body.destination_addr, body.dest_addr_ton);
    message.ServiceType = body.service_type;
    message.SourceTON = body.source_addr_ton;
    message.SourceNPI = body.source_addr_npi;
    message.DestinationTON = body.dest_addr_ton;
    message.DestinationNPI = body.dest_addr_npi;
    message.DCS = body.data_coding;
    message.ESM = body.esm_class;
    using smppcharset::Coding;
    const Coding coding = smppcharset::KindOf(body.data_coding);
    message.Format = coding == Coding::kUcs2   ? sms::asMESSAGEFORMAT_UNICODE
                     : coding == Coding::kData ? sms::asMESSAGEFORMAT_DATA
                                               : sms::asMESSAGEFORMAT_TEXT;
    message.Data =
        coding == Coding::kText ? smppcharset::Decode(text, body.data_coding, settings_->charSet) : text;
    message.ReceivedTime = static_cast<std::int32_t>(clock_->Now());
    message.TimeSecs = message.ReceivedTime;
    message.Time = TimeText(*clock_, message.TimeSecs);
    message.TlvRecords = tlvs;
    message.SetSinglePart();
    if (const CTLVRecord* total = tlvs.Find(tlv::kSarTotalSegments)) {
        message.PartCount = total->byteValue;
        const CTLVRecord* number_ = tlvs.Find(tlv::kSarSegmentNumber);
        const CTLVRecord* reference = tlvs.Find(tlv::kSarMessageReference);
        message.PartNumber = number_ != nullptr ? number_->byteValue : 0;
        message.PartReference = reference != nullptr ? reference->wordValue : 0;
    }
    return message;
}

void CSmppSession::OnDeliver(std::string_view octets) {
    log_->Log(logmask::kVerbatim, "Receiving [deliver_sm]...\n");
    deliver_.SetData(Octets(octets));
    deliver_.Decode();
    Trace(deliver_);
    if (deliver_.command_status == 0) {
        CSmsMessageX message = MessageOf(deliver_, deliver_.message, deliver_.tlvs);
        message.PID = deliver_.protocol_id;
        message.UserDataHeader = deliver_.userDataHeader;
        message.TakeUserDataHeader();
        Receive(std::move(message));
    }
    deliverResp_.Reset();
    deliverResp_.sequence_number = header_.sequence_number;
    Send(deliverResp_, "deliver_sm_resp");
}

void CSmppSession::OnData(std::string_view octets) {
    log_->Log(logmask::kVerbatim, "Receiving [data_sm]...\n");
    CSmppDataSm pdu;
    pdu.SetData(Octets(octets));
    pdu.Decode();
    Trace(pdu);
    SmppReceivedText text;
    text.Read({}, pdu.tlvs, pdu.esm_class, pdu.data_coding);
    CSmsMessageX message = MessageOf(pdu, text.message, pdu.tlvs);
    message.UserDataHeader = text.userDataHeader;
    message.TakeUserDataHeader();
    Receive(std::move(message));
    CSmppDataSmResp response;
    response.sequence_number = header_.sequence_number;
    hex::AppendNumber(response.message_id, dataReference_++);
    Send(response, "data_sm_resp");
}

// First the receipt in the text, then the one in the optional parameters; what is neither is a message. A
// receipt whose message is not known yet is held back until the response that names it.
void CSmppSession::Receive(CSmsMessageX message) {
    RecordAnswers();  // it may be a receipt for one of them
    const bool marked = (message.ESM & 0x3C) == kReceiptBit;
    if (TakeReceipt(message)) return;
    if (marked && held_.size() < kMostHeldReceipts) {
        if (const auto receipt = ParseReceipt(ToAnsi(message.Data), *clock_);
            receipt && !receipt->id.empty()) {
            held_.push_back({*receipt, std::move(message), clock_->Ticks()});
            return;
        }
    }
    if (marked) message.Format = sms::asMESSAGEFORMAT_REPORT;
    received_->Add(std::move(message));
}

bool CSmppSession::TakeReceipt(const CSmsMessageX& message) {
    bool taken = false;
    if (const auto receipt = ParseReceipt(ToAnsi(message.Data), *clock_); receipt && !receipt->id.empty()) {
        if (const auto reference = reports_->ApplyReceipt(*receipt)) {
            log_->Log(logmask::kActivity, "New deliveryreport received for message [%s]\n",
                      reference->c_str());
            taken = true;
        }
    }
    const CTLVRecord* id = message.TlvRecords.Find(tlv::kReceiptedMessageId);
    if (id == nullptr) return taken;
    const CTLVRecord* state = message.TlvRecords.Find(tlv::kMessageState);
    if (state == nullptr) return true;  // a receipt without a state is dropped
    if (taken) return true;
    SmsReceipt receipt;
    receipt.id = std::string(id->text.begin(), id->text.end());
    receipt.status = state->byteValue;
    receipt.completedTime = IsCompletedStatus(receipt.status) ? static_cast<std::int32_t>(clock_->Now()) : 0;
    if (const auto reference = reports_->ApplyReceipt(receipt)) {
        log_->Log(logmask::kActivity, "New deliveryreport received for message [%s]\n", reference->c_str());
    } else if (inFlight_.Size() == 0) {
        reports_->Update(receipt.id, receipt.status, receipt.completedTime, 0);
    } else if (held_.size() < kMostHeldReceipts) {
        held_.push_back({receipt, message, clock_->Ticks()});
    }
    return true;
}

void CSmppSession::RetryReceipts(bool expireAll) {
    const std::uint32_t now = clock_->Ticks();
    std::deque<HeldReceipt> waiting;
    waiting.swap(held_);
    for (HeldReceipt& held : waiting) {
        if (const auto reference = reports_->ApplyReceipt(held.receipt)) {
            log_->Log(logmask::kActivity, "New deliveryreport received for message [%s]\n",
                      reference->c_str());
        } else if (!expireAll && now - held.since < kResponseTime) {
            held_.push_back(std::move(held));
        } else {
            held.message.Format = sms::asMESSAGEFORMAT_REPORT;
            received_->Add(std::move(held.message));
        }
    }
}

// --- time

void CSmppSession::OnTick() {
    const std::uint32_t now = clock_->Ticks();
    ticks_ += now - lastTick_;
    lastTick_ = now;
    if (state_ != State::kBound) return;
    inFlight_.Expire(now, kResponseTime,
                     [this](const SmppInFlight& submit) { Finish(submit, kUnansweredStatus, kNoMessageId); });
    const auto interval = static_cast<std::uint32_t>(std::max(settings_->serverKeepAlive, 0)) * 1000U;
    if (interval != 0 && now - lastKeepAlive_ >= interval) KeepAlive();
    if (state_ != State::kBound) return;
    if (now - lastService_ >= kServiceInterval) {
        lastService_ = now;
        reports_->RemoveOlderThan(kReportsKept);
        if (!held_.empty()) RetryReceipts(false);
    }
    Submit();
}

std::uint32_t CSmppSession::NextTick() const {
    if (state_ == State::kBound && !queue_.IsEmpty() && settings_->throughput > 0 && !IsWindowFull()) {
        const std::uint64_t now = ticks_ * 1000;
        return pace_ > now
                   ? static_cast<std::uint32_t>(std::min<std::uint64_t>((pace_ - now) / 1000 + 1, kIdleTick))
                   : 1;
    }
    const auto interval = static_cast<std::uint32_t>(std::max(settings_->serverKeepAlive, 0)) * 1000U;
    return interval != 0 ? std::min(interval, kIdleTick) : kIdleTick;
}

void CSmppSession::KeepAlive() {
    lastKeepAlive_ = clock_->Ticks();
    if (unansweredKeepAlives_ >= kMostKeepAlives) {
        unansweredKeepAlives_ = 0;
        closeCode_ = result::SmppTimedOut;
        Close("Keep alive timer expired...\n");
        return;
    }
    ++unansweredKeepAlives_;
    CSmppEnquireLink pdu;
    pdu.sequence_number = NextSequence();
    Send(pdu, "enquire_link");
}

// Messages go out evenly spaced when a throughput is set; a pause does not save up more than one message.
void CSmppSession::Submit() {
    const std::size_t window = Window();
    const std::uint64_t now = ticks_ * 1000;
    const std::uint32_t submitted = clock_->Ticks();
    const std::uint64_t spacing =
        settings_->throughput > 0 ? 1'000'000ULL / static_cast<std::uint64_t>(settings_->throughput) : 0;
    const bool logging = log_->IsLogging();
    while (!queue_.IsEmpty() && inFlight_.Size() < window && output_.size() < kOutputMark) {
        if (spacing != 0) {
            if (pace_ > now) return;
            pace_ = std::max(pace_, now > 10'000 ? now - 10'000 : 0) + spacing;
        }
        const SmppQueuedSubmit submit = queue_.Front();
        const std::uint32_t sequence = NextSequence();
        const std::size_t start = output_.size();
        output_ += submit.pdu;
        for (std::size_t i = 0; i < 4; ++i)
            output_[start + kSequenceOffset + i] = static_cast<char>(sequence >> (24 - 8 * i));
        if (logging) {
            log_->Log(logmask::kVerbatim, "Sending [submit_sm]...\n");
            CSmppSubmitSm pdu;
            pdu.SetData(Octets(std::string_view(output_).substr(start)));
            pdu.Decode();
            Trace(pdu);
        }
        inFlight_.Offer({std::string(submit.reference), submit.wantsReport, sequence, submitted});
        queue_.Pop();
    }
}
