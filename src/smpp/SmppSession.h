// The SMPP session as a machine without I/O: it takes octets, ticks and messages, and yields octets and
// events. The worker thread around it (SmppProtocol) reads, ticks and writes.
#pragma once
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "smpp/SmppSettings.h"
#include "smpp/SmppSubmitQueue.h"
#include "smpp/SmppWindow.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

class CSmppSession {
  public:
    enum class State { kIdle, kBinding, kBound, kUnbinding, kClosed };

    CSmppSession(CKorBase& log, const SmppSettings& settings, CSmsDeliveryReports& reports,
                 CSmsMessagesX& received, Clock& clock);

    void StartBind();
    void StartUnbind();
    void Queue(const SmppQueuedSubmit& submit) { queue_.Push(submit); }
    void Queue(SmppSubmitQueue& submits) { queue_.Append(submits); }

    // Octets as they arrive, in any pieces. What is no PDU closes the session.
    void OnBytes(std::string_view octets);

    // Expiry, keep-alive, service of the reports, and submitting what window and pace allow.
    void OnTick();

    // The connection is gone: everything not answered gets a final result.
    void OnClosed();

    // Octets to be sent; the caller erases what has gone out.
    std::string& Output() { return output_; }

    // Milliseconds until OnTick has something to do.
    std::uint32_t NextTick() const;

    State GetState() const { return state_; }
    bool HasWork() const { return !queue_.IsEmpty() || inFlight_.Size() != 0; }
    // The bind's result code, valid once the state is no longer kBinding.
    ResultCode BindResult() const { return bindResult_; }
    // Why the session closed by itself: 33206 after ten unanswered keep-alives, else 0.
    ResultCode CloseCode() const { return closeCode_; }
    std::size_t InFlight() const { return inFlight_.Size(); }
    bool IsWindowFull() const { return inFlight_.Size() >= Window(); }

  private:
    std::size_t Window() const { return static_cast<std::size_t>(std::max(settings_->windowSize, 1)); }

    struct HeldReceipt {  // came before the response that names its message
        SmsReceipt receipt;
        CSmsMessageX message;
        std::uint32_t since;
    };

    template <class Pdu>
    void Send(Pdu& pdu, const char* name);
    template <class Pdu>
    void Trace(Pdu& pdu);
    template <class Pdu>
    void Answer(const char* request, const char* response);
    std::uint32_t NextSequence();

    void Dispatch(std::string_view octets);
    void OnBindResponse();
    void OnSubmitResponse(std::string_view octets);
    void OnDeliver(std::string_view octets);
    void OnData(std::string_view octets);
    template <class Body>
    CSmsMessageX MessageOf(const Body& body, const std::u16string& text, const CTLVRecords& tlvs) const;
    void Receive(CSmsMessageX message);
    bool TakeReceipt(const CSmsMessageX& message);
    void RetryReceipts(bool expireAll);

    void Submit();
    void RecordAnswers();
    void Finish(const SmppInFlight& submit, std::uint32_t status, const std::string& messageId);
    void KeepAlive();
    void Close(const char* reason);

    CKorBase* log_;
    const SmppSettings* settings_;
    CSmsDeliveryReports* reports_;
    CSmsMessagesX* received_;
    Clock* clock_;

    State state_ = State::kIdle;
    ResultCode bindResult_;
    ResultCode closeCode_;
    std::uint32_t sequence_ = 1;
    std::uint32_t unansweredKeepAlives_ = 0;
    std::uint32_t lastKeepAlive_ = 0;
    std::uint32_t lastService_ = 0;
    std::uint64_t pace_ = 0;   // microticks at which the next message may go
    std::uint64_t ticks_ = 0;  // ms, not wrapping
    std::uint32_t lastTick_ = 0;
    std::uint32_t dataReference_ = 0;

    std::string input_;
    std::string output_;
    SmppSubmitQueue queue_;
    SmppWindow inFlight_;
    std::vector<SubmitAnswer> answers_;  // of the octets being read, recorded together
    std::deque<HeldReceipt> held_;

    CSmppPdu header_;
    CSmppSubmitSmResp submitResp_;
    CSmppDeliverSm deliver_;
    CSmppDeliverSmResp deliverResp_;
};

// The result code of a command_status that answers a submit_sm.
ResultCode SubmitResult(std::uint32_t commandStatus);
// And that of one that answers a bind.
ResultCode BindResultOf(std::uint32_t commandStatus);
