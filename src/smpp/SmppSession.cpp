#include "smpp/SmppSession.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/UniqueNumber.h"
#include "smpp/SmppReceived.h"
#include "smpp/SmppStatus.h"

#include <algorithm>
#include <array>
#include <exception>
#include <span>
#include <utility>

namespace {

constexpr std::size_t kLargestPdu = 65536;
constexpr std::size_t kLengthSize = 4;
constexpr std::size_t kCommandOffset = 4;
constexpr std::size_t kStatusOffset = 8;
constexpr std::size_t kSequenceOffset = 12;
constexpr std::uint32_t kResponseTime = 20'000;     // ms
constexpr std::uint32_t kServiceInterval = 10'000;  // ms
constexpr std::uint32_t kMostKeepAlives = 10;
constexpr std::uint32_t kLastSequence = 0x7FFFFFFF;
// Octets of output behind which nothing is submitted, and behind which nothing is read. Answers to submits
// make none, so that a server that cannot write them is read while it does not read.
constexpr std::size_t kSubmitMark = std::size_t{1} << 20;
constexpr std::size_t kReadMark = 2 * kSubmitMark;
constexpr std::int32_t kReportsKept = 86'400;  // s
constexpr std::uint32_t kIdleTick = 1000;      // ms
constexpr std::size_t kTraceSlack = 2048;
constexpr std::uint32_t kUnansweredStatus = 0xFFFFFFFF;
constexpr std::uint32_t kUnknownError = 0xFF;  // ESME_RUNKNOWNERR
constexpr unsigned kEvent = logmask::kVerbatim | logmask::kActivity;

std::uint32_t ReadWord(std::string_view octets, std::size_t at = 0) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(octets[at + i]);
    return value;
}

std::span<const std::uint8_t> Octets(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

CSmppSession::CSmppSession(CKorBase& log, const SmppSettings& settings, CSmsDeliveryReports& reports,
                           CSmsMessagesX& received, Clock& clock)
    : log_(&log),
      settings_(&settings),
      reports_(&reports),
      clock_(&clock),
      receipts_(log, reports, received, clock, inFlight_),
      pace_(clock.Ticks()),
      bindResult_(result::SmppBindFailed),
      lastKeepAlive_(clock.Ticks()),
      lastService_(clock.Ticks()) {}

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
    log_->LogSized(logmask::kVerbatim, text.size() + kTraceSlack, "%s\n", text.c_str());
}

template <class Pdu>
void CSmppSession::Send(Pdu& pdu, const char* name) {
    pdu.Encode();
    TraceSent(pdu, name);
    Put(pdu);
}

template <class Pdu>
void CSmppSession::TraceSent(Pdu& pdu, const char* name) {
    log_->Log(logmask::kVerbatim, "Sending [%s]...\n", name);
    Trace(pdu);
}

template <class Pdu>
void CSmppSession::Put(const Pdu& pdu) {
    const auto octets = pdu.Data();
    output_.append(reinterpret_cast<const char*>(octets.data()), octets.size());
}

template <class Pdu>
void CSmppSession::Answer(Pdu& pdu, const char* name) {
    pdu.Reset();
    pdu.sequence_number = header_.sequence_number;
    Send(pdu, name);
}

// --- bind and unbind

void CSmppSession::StartBind() {
    state_ = State::kBinding;
    unansweredKeepAlives_ = 0;
    sequence_ = 1;
    switch (static_cast<BindMode>(settings_->systemMode)) {
        case BindMode::kTransmitter:
            SendBind<CSmppBindTransmitter>("bind_transmitter");
            break;
        case BindMode::kReceiver:
            SendBind<CSmppBindReceiver>("bind_receiver");
            break;
        default:
            SendBind<CSmppBindTransceiver>("bind_transceiver");
            break;
    }
}

template <class Pdu>
void CSmppSession::SendBind(const char* name) {
    Pdu pdu;
    pdu.sequence_number = NextSequence();
    pdu.system_id = settings_->systemId;
    pdu.password = settings_->systemPassword;
    pdu.system_type = settings_->systemType;
    pdu.interface_version = settings_->InterfaceVersion();
    pdu.addr_ton = static_cast<std::uint8_t>(settings_->sourceTon);
    pdu.addr_npi = static_cast<std::uint8_t>(settings_->sourceNpi);
    pdu.address_range = settings_->addressRange;
    pdu.tlvs = settings_->transmitTlvs;
    pdu.Encode();
    if (!pdu.IsWhole()) {
        bindResult_ = result::MessageTooLong;
        state_ = State::kClosed;
        return;
    }
    Put(pdu);
    // The log shows the PDU that a hidden password would make: neither its field nor its octets tell it, nor
    // do those of a field that is the same text.
    for (std::string* field : {&pdu.password, &pdu.system_id, &pdu.system_type, &pdu.address_range})
        *field = log_->Shown(*field);
    pdu.Encode();
    TraceSent(pdu, name);
}

void CSmppSession::StartUnbind() {
    if (state_ != State::kBound) return;
    state_ = State::kUnbinding;
    CSmppUnbind pdu;
    pdu.sequence_number = NextSequence();
    Send(pdu, "unbind");
}

void CSmppSession::OnClosed() {
    state_ = State::kClosed;
    RecordAnswers();  // of octets whose reading ended in an exception
    const auto fail = [this](std::string_view reference) {
        reports_->SetStatus(reference, sms::asDELIVERYSTATUS_FAILED, result::SmppNotBound.Number());
    };
    inFlight_.Expire(clock_->Ticks(), 0, [&](const SmppInFlight& submit) { fail(submit.reference); });
    for (; !queue_.IsEmpty(); queue_.Pop()) fail(queue_.Front().reference);
    receipts_.Close();
}

// --- reading

bool CSmppSession::WantsBytes() const { return output_.size() < kReadMark; }

void CSmppSession::Take(std::string_view octets) {
    // Whole PDUs are taken from where they lie; only a piece that is left over is kept.
    const bool kept = !input_.empty();
    if (kept) input_.append(octets);
    std::string_view rest = kept ? std::string_view(input_) : octets;
    while (state_ != State::kClosed && rest.size() >= kLengthSize) {
        const std::uint32_t length = ReadWord(rest);
        if (length < CSmppPdu::kHeaderSize || length > kLargestPdu) {
            log_->Log(kEvent, "Invalid PDU length [0x%08X], closing the session\n",
                      static_cast<unsigned>(length));
            state_ = State::kClosed;
            break;
        }
        if (rest.size() < length) break;
        DispatchSafely(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    input_ = std::string(rest);
    if (isUnbound_) state_ = State::kClosed;
}

void CSmppSession::Settle() {
    RecordAnswers();
    receipts_.Settle();
}

// Receipts that waited for one of the answers find their message now.
void CSmppSession::RecordAnswers() {
    if (answers_.empty()) return;
    reports_->RecordAnswers(answers_);
    receipts_.TakeAnswers(answers_);
    answers_.clear();
}

// What is done with a command; each is logged by its name first.
struct CSmppSession::Handler {
    std::uint32_t command;
    const char* name;
    void (CSmppSession::*handle)(std::string_view octets);
};

const CSmppSession::Handler& CSmppSession::HandlerOf(std::uint32_t command) {
    using S = CSmppSession;
    static constexpr auto kHandlers = std::to_array<Handler>({
        {smpp::kSubmitSm | smpp::kResponse, "submit_sm_resp", &S::OnSubmitResponse},
        {smpp::kDeliverSm, "deliver_sm", &S::OnDeliver},
        {smpp::kDataSm, "data_sm", &S::OnData},
        {smpp::kEnquireLink, "enquire_link", &S::OnEnquireLink},
        {smpp::kEnquireLink | smpp::kResponse, "enquire_link_resp", &S::OnEnquireLinkResponse},
        {smpp::kBindTransceiver | smpp::kResponse, "bind_transceiver_resp", &S::OnBindResponse},
        {smpp::kBindTransmitter | smpp::kResponse, "bind_transmitter_resp", &S::OnBindResponse},
        {smpp::kBindReceiver | smpp::kResponse, "bind_receiver_resp", &S::OnBindResponse},
        {smpp::kUnbind, "unbind", &S::OnUnbind},
        {smpp::kUnbind | smpp::kResponse, "unbind_resp", &S::OnUnbindResponse},
        {smpp::kGenericNack, "generic_nack", &S::OnGenericNack},
    });
    static constexpr Handler kUnknown{0, "unknown pdu", &S::OnUnknown};
    const auto* const row = std::ranges::find(kHandlers, command, &Handler::command);
    return row != kHandlers.end() ? *row : kUnknown;
}

void CSmppSession::Dispatch(std::string_view octets) {
    header_ = {ReadWord(octets, kCommandOffset), ReadWord(octets, kStatusOffset),
               ReadWord(octets, kSequenceOffset)};
    const Handler& handler = HandlerOf(header_.command_id);
    log_->Log(logmask::kVerbatim, "Receiving [%s]...\n", handler.name);
    (this->*handler.handle)(octets);
}

void CSmppSession::DispatchSafely(std::string_view octets) {
    const auto report = [this](const char* what) {
        log_->Log(logmask::kLog, "EXCEPTION [%s], source=[SmppProtocol], line=[%d]", what, __LINE__);
    };
    try {
        Dispatch(octets);
    } catch (const std::exception& error) {
        report(error.what());
    } catch (...) {
        report("unknown");
    }
}

void CSmppSession::OnBindResponse(std::string_view octets) {
    CSmppBindTransceiverResp pdu;
    pdu.SetData(Octets(octets));
    pdu.Decode();
    Trace(pdu);
    if (state_ != State::kBinding) return;
    bindResult_ = BindResultOf(header_.command_status);
    state_ = bindResult_ == result::Success ? State::kBound : State::kClosed;
    lastKeepAlive_ = clock_->Ticks();
}

void CSmppSession::OnEnquireLink(std::string_view /*octets*/) {
    Answer(enquireLinkResp_, "enquire_link_resp");
}

void CSmppSession::OnEnquireLinkResponse(std::string_view /*octets*/) { unansweredKeepAlives_ = 0; }

void CSmppSession::OnUnbind(std::string_view /*octets*/) {
    CSmppUnbindResp pdu;
    Answer(pdu, "unbind_resp");
    log_->Log(kEvent, "Server has unbound the session\n");
    isUnbound_ = true;
}

void CSmppSession::OnUnbindResponse(std::string_view /*octets*/) {
    if (state_ == State::kUnbinding) isUnbound_ = true;
}

void CSmppSession::OnUnknown(std::string_view /*octets*/) {
    CSmppGenericNack pdu;
    Answer(pdu, "generic_nack");
}

void CSmppSession::OnSubmitResponse(std::string_view octets) {
    submitResp_.SetData(Octets(octets));
    submitResp_.Decode();
    Trace(submitResp_);
    log_->Log(logmask::kVerbatim, "Message Reference [%s]\n", submitResp_.message_id.c_str());
    if (const auto submit = inFlight_.Complete(header_.sequence_number)) {
        Finish(*submit, header_.command_status, submitResp_.message_id);
    }
}

void CSmppSession::OnGenericNack(std::string_view /*octets*/) {
    if (state_ == State::kBinding) {  // nothing else is unanswered
        state_ = State::kClosed;
        return;
    }
    if (const auto submit = inFlight_.Complete(header_.sequence_number)) {
        Finish(*submit, header_.command_status != 0 ? header_.command_status : kUnknownError, {});
    }
}

void CSmppSession::OnDeliver(std::string_view octets) {
    deliver_.SetData(Octets(octets));
    deliver_.Decode();
    Trace(deliver_);
    if (deliver_.command_status == 0) Receive(SmppReceivedMessage(deliver_, settings_->charSet, *clock_));
    Answer(deliverResp_, "deliver_sm_resp");
}

void CSmppSession::OnData(std::string_view octets) {
    CSmppDataSm pdu;
    pdu.SetData(Octets(octets));
    pdu.Decode();
    Trace(pdu);
    Receive(SmppReceivedMessage(pdu, settings_->charSet, *clock_));
    CSmppDataSmResp response;
    response.sequence_number = header_.sequence_number;
    hex::AppendNumber(response.message_id, UniqueNumber());
    Send(response, "data_sm_resp");
}

void CSmppSession::Receive(CSmsMessageX message) {
    RecordAnswers();  // it may be a receipt for one of them
    receipts_.Take(std::move(message));
}

// --- submitting

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
        reports_->RecordProviderReference(submit.reference, messageId);
        return;
    }
    const ResultCode code = SubmitResultOf(status);
    const std::string text(DescribeError(code));
    log_->Log(kEvent, "Sending failed (%s)\n", text.c_str());
    reports_->SetStatus(
        submit.reference,
        code == result::SmppNoCredits ? sms::asDELIVERYSTATUS_NOCREDITS : sms::asDELIVERYSTATUS_REJECTED,
        static_cast<std::int32_t>(status));
}

// Messages go out as the window and the throughput allow.
void CSmppSession::Submit() {
    const std::uint32_t now = clock_->Ticks();
    const bool logging = log_->IsLogging();
    while (!queue_.IsEmpty() && Room() != 0 && output_.size() < kSubmitMark &&
           pace_.Allows(settings_->throughput)) {
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
        inFlight_.Offer({std::string(submit.reference), submit.wantsReport, sequence, now});
        queue_.Pop();
    }
}

// --- time

std::uint32_t CSmppSession::KeepAliveInterval() const {
    return static_cast<std::uint32_t>(std::max(settings_->serverKeepAlive, 0)) * 1000U;
}

void CSmppSession::OnTick() {
    const std::uint32_t now = clock_->Ticks();
    pace_.Advance(now);
    if (state_ != State::kBound) return;
    inFlight_.Expire(now, kResponseTime, [this](const SmppInFlight& submit) {
        Finish(submit, kUnansweredStatus, std::string(kNoProviderReference));
    });
    const std::uint32_t interval = KeepAliveInterval();
    if (interval != 0 && now - lastKeepAlive_ >= interval) KeepAlive();
    if (state_ != State::kBound) return;
    if (now - lastService_ >= kServiceInterval) {
        lastService_ = now;
        reports_->RemoveOlderThan(kReportsKept);
    }
    if (answers_.empty()) receipts_.Settle();  // whose answer may be among them
    Submit();
}

std::uint32_t CSmppSession::NextTick() const {
    if (state_ == State::kBound && !queue_.IsEmpty() && settings_->throughput > 0 && Room() != 0) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(pace_.Wait(), kIdleTick));
    }
    const std::uint32_t interval = KeepAliveInterval();
    return interval != 0 ? std::min(interval, kIdleTick) : kIdleTick;
}

void CSmppSession::KeepAlive() {
    lastKeepAlive_ = clock_->Ticks();
    if (unansweredKeepAlives_ >= kMostKeepAlives) {
        unansweredKeepAlives_ = 0;
        closeCode_ = result::SmppTimedOut;
        log_->Log(kEvent, "Keep alive timer expired...\n");
        state_ = State::kClosed;
        return;
    }
    ++unansweredKeepAlives_;
    CSmppEnquireLink pdu;
    pdu.sequence_number = NextSequence();
    Send(pdu, "enquire_link");
}
