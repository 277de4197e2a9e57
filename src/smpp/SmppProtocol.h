// The SMPP channel: one connection, its worker thread, and the calls that a caller's thread makes on it.
#pragma once
#include "foundation/BriefMutex.h"
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "foundation/net/KorTcpSocket.h"
#include "frame/VrmBase.h"
#include "smpp/SmppSession.h"
#include "smpp/SmppSettings.h"
#include "smpp/SmppSubmit.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class CSmppProtocol : public CVrmBase {
  public:
    static constexpr char kReferenceSeparator = ';';

    explicit CSmppProtocol(Clock& clock = SystemClock());
    ~CSmppProtocol() override;

    // Addresses and character set are looked at by each Send, everything else by Connect.
    SmppSettings settings;

    // What a session that ends by itself leaves for LastError; called on the worker thread.
    void SetFailureHandler(std::function<void(ResultCode)> handler) { onFailure_ = std::move(handler); }

    void Clear();

    // 0; 1010, 22019, 22021, 33201 to 33206, 33209; 34033 when optional parameters burst the bind.
    ResultCode Connect();

    // Sends what is queued, unbinds and joins the worker; takes ServerTimeout at the most for the messages
    // and 5 s at the most for the unbind. What could not be sent gets the status "Failed".
    void Disconnect();
    bool IsConnected() const { return bound_; }

    // Queues a message and gives its reference; several parts are joined by ";". 33205 when not connected,
    // 33208 when bound as receiver, and the codes of SmppSubmitBuilder.
    ResultCode Send(const CSmsMessageX& message, std::string& references);

    // The report of references as Send gave them. With `wait`, waits until it is final, the session ends or
    // ServerTimeout has passed (33206, the report as it is then). 34050 for a reference that is unknown.
    ResultCode QueryStatus(std::string_view references, bool wait, CSmsDeliveryReport& report);

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);

    CSmsDeliveryReports& Reports() { return reports_; }
    CSmsMessagesX& Received() { return received_; }

  private:
    static constexpr std::size_t kNever = SIZE_MAX;

    std::vector<ProviderRow> ProviderRows();

    ResultCode Build(const CSmsMessageX& message);
    ResultCode StartWorker();
    ResultCode AwaitBind();
    void LogConnect(ResultCode code);

    std::string_view EnterNew(std::string& references);
    bool PutIntoIntake(const SmppQueuedSubmit& submit);
    void FailIntake();

    void Work();
    void Serve(CSmppSession& session);
    void ReportBind(const CSmppSession& session, bool isOpen);
    template <class Condition>
    bool PumpWhile(CSmppSession& session, CSmppSession::State state, std::uint32_t time, Condition holds);
    bool Pump(CSmppSession& session);
    bool Flush(CSmppSession& session);
    bool Read(CSmppSession& session, std::size_t& received);
    void ReadToEnd(CSmppSession& session);
    std::size_t TakeIntake(CSmppSession& session);
    void WaitForWork(const CSmppSession& session, std::size_t taken, bool mayRead);
    void SignalBind(ResultCode code);

    CKorTcpSocket socket_;
    SmppSettings active_;  // the settings at the connect, which the worker reads
    CSmsDeliveryReports reports_;
    CSmsMessagesX received_;
    SmppSubmitBuilder builder_;
    std::vector<std::string> pdus_;  // of the message being sent; kept for their memory
    std::function<void(ResultCode)> onFailure_;

    std::thread worker_;
    net::Waiter waiter_;
    std::atomic<bool> bound_ = false;
    std::atomic<bool> isSettled_ = true;  // no worker is left that could still give a message its result
    std::atomic<bool> stop_ = false;

    BriefMutex intakeLock_;  // of what follows
    SmppSubmitQueue intake_;
    std::size_t wakeAt_ = kNever;  // so many messages in the intake wake the worker

    std::mutex lock_;  // of what follows
    std::condition_variable changed_;
    bool started_ = false;
    bool bindAnswered_ = false;
    ResultCode bindResult_;
};
