// The SMPP session as a machine without I/O: it takes octets, ticks and messages, and yields octets and
// events. The worker thread around it (SmppProtocol) reads, ticks and writes.
#pragma once
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "smpp/SmppPace.h"
#include "smpp/SmppReceipts.h"
#include "smpp/SmppSettings.h"
#include "smpp/SmppSubmitQueue.h"
#include "smpp/SmppWindow.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessagesX.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CSmppSession {
  public:
    enum class State { kIdle, kBinding, kBound, kUnbinding, kClosed };

    CSmppSession(CKorBase& log, const SmppSettings& settings, CSmsDeliveryReports& reports,
                 CSmsMessagesX& received, Clock& clock);

    void StartBind();
    void StartUnbind();
    void Queue(const SmppQueuedSubmit& submit) { queue_.Push(submit); }
    void Queue(SmppSubmitQueue& submits) { queue_.Append(submits); }

    // Octets as they arrive, in any pieces. What is no PDU closes the session; a PDU whose handling throws is
    // left unanswered. What they answered is recorded by Settle, so that the next messages can go out first.
    void Take(std::string_view octets);
    void Settle();
    void OnBytes(std::string_view octets) {
        Take(octets);
        Settle();
    }
    // False while so much output waits that nothing more should be read: a server that only asks must listen.
    bool WantsBytes() const;

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
    // The bind's result code, valid once the state is no longer kBinding: 33202 also when the session closed
    // before the bind was answered.
    ResultCode BindResult() const { return bindResult_; }
    // Why the session closed by itself: 33206 after ten unanswered keep-alive requests, else 0.
    ResultCode CloseCode() const { return closeCode_; }
    std::size_t InFlight() const { return inFlight_.Size(); }
    // How many more messages may go out before one is answered.
    std::size_t Room() const { return Window() - std::min(Window(), inFlight_.Size()); }
    std::size_t Queued() const { return queue_.Size(); }

  private:
    std::size_t Window() const { return static_cast<std::size_t>(std::max(settings_->windowSize, 1)); }

    // Of the PDU being handled.
    struct Header {
        std::uint32_t command_id = 0, command_status = 0, sequence_number = 0;
    };
    struct Handler;
    static const Handler& HandlerOf(std::uint32_t command);

    template <class Pdu>
    void Send(Pdu& pdu, const char* name);
    template <class Pdu>
    void Put(const Pdu& pdu);
    template <class Pdu>
    void TraceSent(Pdu& pdu, const char* name);
    template <class Pdu>
    void SendBind(const char* name);
    template <class Pdu>
    void Trace(Pdu& pdu);
    template <class Pdu>
    void Answer(Pdu& pdu, const char* name);
    std::uint32_t NextSequence();

    void Dispatch(std::string_view octets);
    void DispatchSafely(std::string_view octets);
    void OnBindResponse(std::string_view octets);
    void OnSubmitResponse(std::string_view octets);
    void OnGenericNack(std::string_view octets);
    void OnDeliver(std::string_view octets);
    void OnData(std::string_view octets);
    void OnEnquireLink(std::string_view octets);
    void OnEnquireLinkResponse(std::string_view octets);
    void OnUnbind(std::string_view octets);
    void OnUnbindResponse(std::string_view octets);
    void OnUnknown(std::string_view octets);
    void Receive(CSmsMessageX message);

    void Submit();
    void RecordAnswers();
    void Finish(const SmppInFlight& submit, std::uint32_t status, const std::string& messageId);
    std::uint32_t KeepAliveInterval() const;
    void KeepAlive();

    CKorBase* log_;
    const SmppSettings* settings_;
    CSmsDeliveryReports* reports_;
    Clock* clock_;
    SmppReceipts receipts_;
    SmppPace pace_;

    State state_ = State::kIdle;
    ResultCode bindResult_;
    ResultCode closeCode_;
    bool isUnbound_ = false;  // closes the session behind the octets being read
    std::uint32_t sequence_ = 1;
    std::uint32_t unansweredKeepAlives_ = 0;
    std::uint32_t lastKeepAlive_ = 0;
    std::uint32_t lastService_ = 0;

    std::string input_;
    std::string output_;
    SmppSubmitQueue queue_;
    SmppWindow inFlight_;
    std::vector<SubmitAnswer> answers_;  // not yet recorded

    Header header_;
    CSmppSubmitSmResp submitResp_;
    CSmppDeliverSm deliver_;
    CSmppDeliverSmResp deliverResp_;
    CSmppEnquireLinkResp enquireLinkResp_;
};
