#include "foundation/serial/TelephonyWin.h"

#include "foundation/ErrorTexts.h"
#include "foundation/serial/PortWin.h"

#include <cstring>

namespace {

constexpr DWORD kLowestVersion = 0x00010003;
constexpr DWORD kHighestVersion = 0x00020002;
constexpr DWORD kCallParametersSize = 176;
constexpr DWORD kCallParameterFlags = 2;  // the line may be idle
constexpr DWORD kReplyTime = 5000;
constexpr DWORD kReplyPoll = 500;
constexpr DWORD kLineReply = 12;
constexpr const char* kPortClass = "comm/datamodem";

template <class Function>
void Look(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

// A structure of variable length with a terminated text behind it.
template <class Structure>
std::string TextIn(const std::vector<char>& storage, DWORD offset, DWORD size) {
    if (offset < sizeof(Structure) || offset >= storage.size()) return {};
    const char* text = storage.data() + offset;
    return {text, strnlen(text, std::min<std::size_t>(size, storage.size() - offset))};
}

// All calls of the line are taken, or what a call needs is: 0x80000005 and 0x8000004B.
bool IsInUse(LONG outcome) {
    return outcome == static_cast<LONG>(LINEERR_CALLUNAVAIL) ||
           outcome == static_cast<LONG>(LINEERR_RESOURCEUNAVAIL);
}

}  // namespace

bool TelephonyApi::Complete() const {
    return initialize != nullptr && negotiateVersion != nullptr && deviceCapabilities != nullptr &&
           open != nullptr && makeCall != nullptr && getMessage != nullptr && getId != nullptr &&
           drop != nullptr && deallocateCall != nullptr && close != nullptr && shutdown != nullptr;
}

const TelephonyApi& SystemTelephonyApi() {
    static const TelephonyApi table = [] {
        TelephonyApi api;
        HMODULE library = ::LoadLibraryA("tapi32.dll");
        if (library == nullptr) return api;
        Look(library, "lineInitializeExA", api.initialize);
        Look(library, "lineNegotiateAPIVersion", api.negotiateVersion);
        Look(library, "lineGetDevCapsA", api.deviceCapabilities);
        Look(library, "lineOpen", api.open);
        Look(library, "lineMakeCallA", api.makeCall);
        Look(library, "lineGetMessage", api.getMessage);
        Look(library, "lineGetIDA", api.getId);
        Look(library, "lineDrop", api.drop);
        Look(library, "lineDeallocateCall", api.deallocateCall);
        Look(library, "lineClose", api.close);
        Look(library, "lineShutdown", api.shutdown);
        return api;
    }();
    return table;
}

Telephony::~Telephony() { Stop(); }

bool Telephony::Start() {
    if (!api_->Complete()) return false;
    LINEINITIALIZEEXPARAMS parameters{};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwOptions = LINEINITIALIZEEXOPTION_USEEVENT;
    DWORD version = kHighestVersion;
    return api_->initialize(&application_, ::GetModuleHandleA(nullptr), nullptr, "NeltCtrl", &lineCount_,
                            &version, &parameters) == 0;
}

void Telephony::Stop() {
    if (call_ != 0) {
        api_->drop(call_, nullptr, 0);
        api_->deallocateCall(call_);
        call_ = 0;
    }
    if (line_ != 0) {
        api_->close(line_);
        line_ = 0;
    }
    if (application_ != 0) {
        api_->shutdown(application_);
        application_ = 0;
    }
    lineCount_ = 0;
}

Telephony::Line Telephony::LineAt(DWORD number) {
    LINEEXTENSIONID extension{};
    if (api_->negotiateVersion(application_, number, kLowestVersion, kHighestVersion, &version_,
                               &extension) != 0) {
        return {};
    }
    std::vector<char> storage(4096);
    auto* capabilities = reinterpret_cast<LINEDEVCAPS*>(storage.data());
    capabilities->dwTotalSize = static_cast<DWORD>(storage.size());
    if (api_->deviceCapabilities(application_, number, version_, 0, capabilities) != 0) return {};
    return {TextIn<LINEDEVCAPS>(storage, capabilities->dwLineNameOffset, capabilities->dwLineNameSize),
            (capabilities->dwMediaModes & LINEMEDIAMODE_DATAMODEM) != 0};
}

std::vector<std::string> Telephony::Lines() {
    std::vector<std::string> names;
    if (!Start()) return names;
    for (DWORD number = 0; number < lineCount_; ++number) {
        Line line = LineAt(number);
        if (line.isDataModem) names.push_back(std::move(line.name));
    }
    return names;
}

bool Telephony::FindLine(const std::string& name) {
    if (!Start()) return false;
    for (DWORD line = 0; line < lineCount_; ++line) {
        if (LineAt(line).name != name) continue;
        lineNumber_ = line;
        return true;
    }
    return false;
}

ResultCode Telephony::Connect(const std::string& name, HANDLE& port) {
    if (!FindLine(name)) {
        Stop();
        if (!FindLine(name)) {
            Stop();
            return result::TelephonyDeviceNotFound;
        }
    }
    ResultCode code = MakeCall();
    if (code == result::Success) code = PortOfCall(port);
    if (code != result::Success) Stop();
    return code;
}

ResultCode Telephony::MakeCall() {
    if (api_->open(application_, lineNumber_, &line_, version_, 0, 0, LINECALLPRIVILEGE_NONE,
                   LINEMEDIAMODE_DATAMODEM, nullptr) != 0) {
        line_ = 0;
        return result::TelephonyNoResponse;
    }
    LINECALLPARAMS parameters{};
    parameters.dwTotalSize = kCallParametersSize;
    parameters.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    parameters.dwCallParamFlags = kCallParameterFlags;
    parameters.dwAddressMode = LINEADDRESSMODE_ADDRESSID;
    static_assert(sizeof(LINECALLPARAMS) >= kCallParametersSize);
    const LONG request = api_->makeCall(line_, &call_, nullptr, 0, &parameters);
    if (IsInUse(request)) return result::TelephonyDeviceInUse;
    if (request < 0) return result::TelephonyNoResponse;
    return AwaitReply(request);
}

ResultCode Telephony::AwaitReply(LONG request) {
    const Timer timer(*clock_, kReplyTime);
    while (!timer.Expired()) {
        const Timer poll(*clock_, kReplyPoll);
        LINEMESSAGE message{};
        if (api_->getMessage(application_, &message, kReplyPoll) != 0) {
            clock_->Sleep(poll.Remaining());  // it may fail without having waited
            continue;
        }
        if (message.dwMessageID != kLineReply || static_cast<LONG>(message.dwParam1) != request) continue;
        const auto outcome = static_cast<LONG>(message.dwParam2);
        if (outcome >= 0) return result::Success;
        return IsInUse(outcome) ? result::TelephonyDeviceInUse : result::TelephonyNoResponse;
    }
    return result::TelephonyNoResponse;
}

ResultCode Telephony::PortOfCall(HANDLE& port) {
    struct PortId {
        VARSTRING header;
        char space[256];
    };
    PortId id{};
    id.header.dwTotalSize = sizeof id;
    if (api_->getId(line_, 0, call_, LINECALLSELECT_CALL, &id.header, kPortClass) != 0 ||
        id.header.dwStringSize < sizeof(HANDLE) || id.header.dwStringOffset > sizeof id - sizeof(HANDLE)) {
        return result::TelephonyDeviceNotOpened;
    }
    std::memcpy(&port, reinterpret_cast<const char*>(&id) + id.header.dwStringOffset, sizeof port);
    return port == nullptr || port == INVALID_HANDLE_VALUE ? result::TelephonyDeviceNotOpened
                                                           : result::Success;
}

std::vector<std::string> TelephonyLines(const TelephonyApi& api) { return Telephony(api).Lines(); }

namespace {

// The port of a call, with the call that carries it.
class TelephonyPort final : public PortWin {
  public:
    TelephonyPort(Handle port, std::unique_ptr<Telephony> call)
        : PortWin(std::move(port)), call_(std::move(call)) {}
    TelephonyPort(const TelephonyPort&) = delete;
    TelephonyPort& operator=(const TelephonyPort&) = delete;
    ~TelephonyPort() override {
        Close();  // the port before its call
    }

  private:
    std::unique_ptr<Telephony> call_;
};

}  // namespace

ResultCode OpenTelephonyPort(const TelephonyApi& api, const SerialSettings& settings,
                             std::unique_ptr<SerialDevice>& device) {
    auto call = std::make_unique<Telephony>(api);
    HANDLE port = nullptr;
    if (const ResultCode code = call->Connect(settings.device, port); code != result::Success) return code;
    auto opened = std::make_unique<TelephonyPort>(Handle(port), std::move(call));
    if (const ResultCode code = opened->Prepare(settings); code != result::Success) return code;
    device = std::move(opened);
    return result::Success;
}
