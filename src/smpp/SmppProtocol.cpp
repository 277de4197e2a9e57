#include "smpp/SmppProtocol.h"

#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/Product.h"
#include "foundation/UniqueNumber.h"

#include <algorithm>
#include <chrono>
#include <system_error>

namespace {

// Times in ms.
constexpr auto kStartTime = std::chrono::milliseconds(5000);
constexpr std::uint32_t kUnbindTime = 5000;
constexpr std::uint32_t kBlockedTime = 1;
constexpr std::uint32_t kGatherTime = 1;
constexpr std::size_t kManyTaken = 8;  // at a time, by a caller that sends on and on
constexpr std::uint32_t kLongestQueryPause = 20;
constexpr std::size_t kReadSize = 65536;
constexpr std::int32_t kLastPort = 65535;
constexpr std::int32_t kDefaultWindow = 10;
constexpr std::int32_t kDumpAll = 255;

std::uint32_t TimeOf(std::int32_t milliseconds) {
    return static_cast<std::uint32_t>(std::max(milliseconds, 0));
}

}  // namespace

CSmppProtocol::CSmppProtocol(Clock& clock)
    : CVrmBase("CSmppProtocol", clock), socket_(clock), reports_(clock), received_(clock), builder_(clock) {}

CSmppProtocol::~CSmppProtocol() { Disconnect(); }

void CSmppProtocol::Clear() {
    Disconnect();
    settings = {};
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
    reports_.Clear();
    received_.Clear();
}

ResultCode CSmppProtocol::Connect() {
    if (IsConnected()) return result::Success;
    Disconnect();  // joins the worker of a session that has ended by itself
    if (settings.serverPort < 1 || settings.serverPort > kLastPort) return result::InvalidPort;
    if (settings.server.empty()) return result::InvalidHost;
    GuardPasswords({settings.systemPassword});
    const int reached = socket_.Connect(settings.server, static_cast<std::uint16_t>(settings.serverPort),
                                        TimeOf(settings.serverTimeout));
    ResultCode code = reached == tcp::kSuccess ? StartWorker() : result::SmppConnectFailed;
    if (code == result::Success) code = AwaitBind();
    LogConnect(code);
    if (code != result::Success) Disconnect();
    return code;
}

ResultCode CSmppProtocol::StartWorker() {
    if (settings.InterfaceVersion() == 0) return result::SmppInvalidVersion;
    settings.windowSize = AdvancedSetting("SmppWindowSize", kDefaultWindow);
    settings.relativeValidity = AdvancedSetting("ValidityPeriodRelative", 0) != 0;
    settings.dumpFlags = static_cast<std::uint32_t>(AdvancedSetting("Debug", kDumpAll));
    active_ = settings;
    reports_.SetReceiptFormat(settings.reportFormat);
    waiter_.Forget();
    stop_ = false;
    started_ = bindAnswered_ = false;
    try {
        worker_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        return result::ThreadCreationFailed;
    }
    return result::Success;
}

ResultCode CSmppProtocol::AwaitBind() {
    const std::chrono::milliseconds timeout(TimeOf(settings.serverTimeout));
    std::unique_lock guard(lock_);
    if (!changed_.wait_for(guard, kStartTime, [this] { return started_; })) {
        return result::ThreadCreationFailed;
    }
    const bool isAnswered = changed_.wait_for(guard, timeout, [this] { return bindAnswered_; });
    return isAnswered ? bindResult_ : result::SmppTimedOut;
}

void CSmppProtocol::LogConnect(ResultCode code) {
    const std::string text(DescribeError(code));
    Log(logmask::kActivity | logmask::kVerbatim,
        "CONNECT [Velqar Build %s], Server=[%s:%d] , SystemID=[%s], SourceTON=[%d], SourceNPI=[%d], "
        "AddressRange=[%s], "
        "Result = [%s]\n\n",
        product::kBuild, settings.server.c_str(), settings.serverPort, settings.systemId.c_str(),
        settings.sourceTon, settings.sourceNpi, settings.addressRange.c_str(), text.c_str());
    if (code == result::Success) {
        Log(logmask::kVerbatim, "Connected to server %s\n", settings.server.c_str());
    } else {
        Log(logmask::kVerbatim, "Failed to connect server %s ( %s )\n", settings.server.c_str(),
            text.c_str());
    }
}

void CSmppProtocol::Disconnect() {
    const bool ran = worker_.joinable();
    stop_ = true;
    if (ran) {
        waiter_.Wake();
        worker_.join();
    }
    bound_ = false;
    socket_.Disconnect();
    if (ran) Log(logmask::kVerbatim, "Disconnected\n");
}

// Enters a message under a reference that no report has, not even a loaded one, and appends the reference.
std::string_view CSmppProtocol::EnterNew(std::string& references) {
    const std::size_t start = references.size();
    for (;;) {
        hex::AppendNumber(references, UniqueNumber());
        const std::string_view reference = std::string_view(references).substr(start);
        if (reports_.RecordNew(reference, ReportWanted::kSubmitRequested)) return reference;
        references.resize(start);
    }
}

ResultCode CSmppProtocol::Send(const CSmsMessageX& message, std::string& references) {
    references.clear();
    if (!IsConnected()) return result::SmppNotBound;
    if (const ResultCode code = Build(message); code != result::Success) {
        const std::string text(DescribeError(code));
        Log(logmask::kVerbatim, "Sending failed (%s)\n", text.c_str());
        return code;
    }
    bool isAwaited = false;
    for (const std::string& pdu : pdus_) {
        if (!references.empty()) references += kReferenceSeparator;
        isAwaited |= PutIntoIntake({pdu, EnterNew(references), message.RequestDeliveryStatus});
    }
    Log(logmask::kVerbatim, "Adding message to queue...\n");
    if (isAwaited) waiter_.Wake();
    if (!IsConnected())
        FailIntake();  // the session ended meanwhile: what it did not take gets its result here
    return result::Success;
}

// True when the worker sleeps until there is as much as there is now; a busy one comes by anyway.
bool CSmppProtocol::PutIntoIntake(const SmppQueuedSubmit& submit) {
    const std::scoped_lock guard(intakeLock_);
    intake_.Push(submit);
    if (intake_.Size() < wakeAt_) return false;
    wakeAt_ = kNever;
    return true;
}

void CSmppProtocol::FailIntake() {
    const std::scoped_lock guard(intakeLock_);
    for (; !intake_.IsEmpty(); intake_.Pop()) {
        reports_.SetStatus(intake_.Front().reference, sms::asDELIVERYSTATUS_FAILED,
                           result::SmppNotBound.Number());
    }
}

// The mode is the bound one; addresses and character set are those that are set now.
ResultCode CSmppProtocol::Build(const CSmsMessageX& message) {
    if (active_.systemMode == static_cast<std::int32_t>(BindMode::kReceiver)) return result::SmppReceiverOnly;
    return builder_.Build(settings, message, pdus_);
}

ResultCode CSmppProtocol::QueryStatus(std::string_view references, bool wait, CSmsDeliveryReport& report) {
    if (references.empty()) return result::InvalidReference;
    const Timer timer(GetClock(), TimeOf(settings.serverTimeout));
    ResultCode code = result::Success;
    std::uint32_t pause = 1;  // answers mostly come at once, receipts take their time
    for (;;) {
        const bool isSettled = isSettled_;  // looked at first: what is read afterwards is then final
        const auto whole = reports_.QueryWhole(references, kReferenceSeparator);
        if (!whole) {
            code = result::InvalidReference;
            break;
        }
        report = *whole;
        if (!wait || IsCompletedStatus(report.status) || isSettled) break;
        if (timer.Expired()) {
            code = result::SmppTimedOut;
            break;
        }
        GetClock().Sleep(pause);
        pause = std::min(2 * pause, kLongestQueryPause);
    }
    const std::string which(references);
    if (code == result::InvalidReference) {
        const std::string text(DescribeError(code));
        Log(logmask::kVerbatim, "Query status for message '%s' failed ( %s )\n", which.c_str(), text.c_str());
    } else {
        const std::string text(DeliveryStatusText(report.status));
        Log(logmask::kVerbatim, "Query successfull for message '%s' : %s ( SME Errorcode : %d )\n",
            which.c_str(), text.c_str(), report.statusCode);
    }
    return code;
}

// --- the worker

void CSmppProtocol::SignalBind(ResultCode code) {
    {
        const std::scoped_lock guard(lock_);
        if (bindAnswered_) return;
        bindAnswered_ = true;
        bindResult_ = code;
    }
    changed_.notify_all();
}

// Gives how many there were.
std::size_t CSmppProtocol::TakeIntake(CSmppSession& session) {
    const std::scoped_lock guard(intakeLock_);
    const std::size_t taken = intake_.Size();
    if (taken != 0) session.Queue(intake_);
    return taken;
}

// Sends what is ready in one go; what the connection does not take stays for the next time. False when it is
// gone.
bool CSmppProtocol::Flush(CSmppSession& session) {
    std::string& output = session.Output();
    if (output.empty()) return true;
    std::size_t sent = 0;
    const int code = socket_.SendSome(output, sent);
    if (sent == output.size()) {
        output.clear();
    } else {
        output.erase(0, sent);
    }
    if (code == tcp::kSuccess) return true;
    ReadToEnd(session);
    return false;
}

// Reads once. False when the connection has ended.
bool CSmppProtocol::Read(CSmppSession& session, std::size_t& received) {
    thread_local std::vector<char> buffer(kReadSize);
    const int code = socket_.Receive(buffer.data(), buffer.size(), received);
    if (received > 0) session.Take({buffer.data(), received});
    return code == tcp::kSuccess;
}

// What had come before a connection broke is not lost with it.
void CSmppProtocol::ReadToEnd(CSmppSession& session) {
    const Timer timer(GetClock(), TimeOf(active_.serverTimeout));
    for (std::size_t received = 1; received > 0 && !timer.Expired();) {
        if (!Read(session, received)) return;
    }
}

// The caller wakes the worker when there is something to send and room in the window. While it sends one
// message after another it does so when they fill the window, and a pause sends what there is; answers that
// come while many are gathered are read with the next.
void CSmppProtocol::WaitForWork(const CSmppSession& session, std::size_t taken, bool mayRead) {
    const std::size_t room = session.Queued() == 0 ? session.Room() : 0;
    const bool isGathering = room != 0 && taken != 0;
    const bool isBlind = isGathering && taken >= kManyTaken;
    if (mayRead && !isBlind) return;
    {
        const std::scoped_lock guard(intakeLock_);
        wakeAt_ = room == 0 ? kNever : isGathering ? room : 1;
        if (stop_ || intake_.Size() >= wakeAt_) return;
    }
    waiter_.Wait(isBlind ? net::kInvalid : socket_.SocketHandle(),
                 isGathering ? kGatherTime : session.NextTick());
}

// One round of reading, ticking and writing. False when the connection has ended.
bool CSmppProtocol::Pump(CSmppSession& session) {
    const std::size_t taken = TakeIntake(session);
    std::size_t received = 0;
    if (session.WantsBytes() && !Read(session, received)) return false;
    session.OnTick();
    if (!Flush(session)) return false;
    session.Settle();
    if (session.GetState() == CSmppSession::State::kClosed) return false;
    if (!session.Output().empty()) {
        if (received == 0)
            waiter_.Wait(session.WantsBytes() ? socket_.SocketHandle() : net::kInvalid, kBlockedTime);
    } else {
        WaitForWork(session, taken, received > 0);
    }
    return true;
}

// Pumps while the session is in the state and the condition holds, so many ms at the most. False when the
// connection has ended.
template <class Condition>
bool CSmppProtocol::PumpWhile(CSmppSession& session, CSmppSession::State state, std::uint32_t time,
                              Condition holds) {
    const Timer timer(GetClock(), time);
    while (session.GetState() == state && !timer.Expired() && holds()) {
        if (!Pump(session)) return false;
    }
    return true;
}

// Binds, serves until told to stop, sends what is queued, and unbinds.
void CSmppProtocol::Serve(CSmppSession& session) {
    using State = CSmppSession::State;
    const std::uint32_t timeout = TimeOf(active_.serverTimeout);
    const auto isWanted = [this] { return !stop_; };
    session.StartBind();
    bool isOpen = PumpWhile(session, State::kBinding, timeout, isWanted);
    ReportBind(session, isOpen);
    isOpen = isOpen && PumpWhile(session, State::kBound, Timer::kForever, isWanted);
    isOpen = isOpen && PumpWhile(session, State::kBound, timeout, [&] {
                 TakeIntake(session);
                 return session.HasWork();
             });
    if (!isOpen || session.GetState() != State::kBound) return;
    session.StartUnbind();
    (void)PumpWhile(session, State::kUnbinding, std::min(kUnbindTime, timeout), [] { return true; });
}

void CSmppProtocol::ReportBind(const CSmppSession& session, bool isOpen) {
    using State = CSmppSession::State;
    if (session.GetState() == State::kBound) {
        bound_ = true;
        SignalBind(result::Success);
    } else if (session.GetState() == State::kClosed) {
        SignalBind(session.BindResult());
    } else {
        SignalBind(isOpen ? result::SmppTimedOut : result::SmppConnectFailed);
    }
}

void CSmppProtocol::Work() {
    isSettled_ = false;
    {
        const std::scoped_lock guard(lock_);
        started_ = true;
    }
    changed_.notify_all();
    CSmppSession session(*this, active_, reports_, received_, GetClock());
    try {
        Serve(session);
    } catch (const std::exception& error) {
        Log(logmask::kLog, "EXCEPTION [%s], source=[SmppProtocol], line=[%d]", error.what(), __LINE__);
    }
    bound_ = false;
    SignalBind(result::SmppConnectFailed);
    socket_.Disconnect();  // so that the server does not keep the bind until the caller's next call
    TakeIntake(session);
    session.OnClosed();
    isSettled_ = true;
    if (session.CloseCode() != result::Success && onFailure_) onFailure_(session.CloseCode());
}

// --- provider files

std::vector<ProviderRow> CSmppProtocol::ProviderRows() {
    constexpr const char* kSection = "Provider";
    SmppSettings& s = settings;
    return {
        {kSection, "Server", &s.server},
        {kSection, "SystemID", &s.systemId},
        {kSection, "SystemPassword", &s.systemPassword},
        {kSection, "SystemType", &s.systemType},
        {kSection, "SystemSourceAddress", &s.sourceAddress},
        {kSection, "AddressRange", &s.addressRange},
        {kSection, "ServerPort", &s.serverPort},
        {kSection, "ServerTimeout", &s.serverTimeout},
        {kSection, "ServerKeepAlive", &s.serverKeepAlive},
        {kSection, "SystemVersion", &s.systemVersion},
        {kSection, "SystemSourceTON", &s.sourceTon},
        {kSection, "SystemSourceNPI", &s.sourceNpi},
        {kSection, "SystemDestinationTON", &s.destinationTon},
        {kSection, "SystemDestinationNPI", &s.destinationNpi},
        {kSection, "SystemThroughput", &s.throughput},
        {kSection, "SystemCharSet", &s.charSet},
        {kSection, "DeliveryReportFormat", &s.reportFormat},
        {kSection, "AdvancedSettings",
         ProviderRow::Access{[this] { return AdvancedSettings(); },
                             [this](const std::string& text) { SetAdvancedSettings(text); }}},
        {kSection, "SystemTLVRecords",
         ProviderRow::Access{[&s] { return ToAnsi(s.transmitTlvs.ToText()); },
                             [&s](const std::string& text) { s.transmitTlvs.FromText(FromAnsi(text)); }}},
    };
}

ResultCode CSmppProtocol::SaveConfig(const std::string& file) {
    const ResultCode code = SaveProviderFile(file, ProviderRows());
    const std::string text(DescribeError(code));
    Log(logmask::kVerbatim, "Saving SMPP settings to file [%s], result: %d : %s\n", file.c_str(),
        code.Number(), text.c_str());
    return code;
}

ResultCode CSmppProtocol::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}
