#include "foundation/serial/PortWin.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "foundation/serial/TelephonyWin.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr DWORD kBuffer = 16384;
constexpr DWORD kPollPause = 5;
constexpr BYTE kXon = 0x11;
constexpr BYTE kXoff = 0x13;
constexpr WORD kXonLimit = 8192;
constexpr WORD kXoffLimit = 4096;

// The port's own defaults; the state it is in where the system has none.
DCB DefaultsOf(const std::string& device, const DCB& state) {
    std::vector<char> storage(sizeof(COMMCONFIG));
    auto size = static_cast<DWORD>(storage.size());
    for (int attempt = 0; attempt < 2; ++attempt) {
        auto* const configuration = reinterpret_cast<COMMCONFIG*>(storage.data());
        configuration->dwSize = sizeof(COMMCONFIG);
        if (::GetDefaultCommConfigA(device.c_str(), configuration, &size) != 0) return configuration->dcb;
        if (size <= storage.size()) break;
        storage.assign(size, '\0');  // the driver keeps more than the system
    }
    return state;
}

}  // namespace

void ApplyLineSettings(const SerialSettings& settings, const DCB& defaults, DCB& state) {
    state.BaudRate = defaults.BaudRate;
    state.fParity = defaults.fParity;
    state.Parity = defaults.Parity;
    state.StopBits = defaults.StopBits;
    state.ByteSize = defaults.ByteSize;

    state.fBinary = TRUE;
    if (settings.speed != 0) state.BaudRate = settings.speed;
    constexpr BYTE kParities[] = {NOPARITY, ODDPARITY, EVENPARITY, MARKPARITY, SPACEPARITY};
    if (settings.parity >= 1 && settings.parity <= 5) {
        state.fParity = settings.parity != 1;
        state.Parity = kParities[settings.parity - 1];
    }
    if (settings.dataBits != 0) state.ByteSize = settings.dataBits;
    if (settings.stopBits == 1) state.StopBits = ONESTOPBIT;
    if (settings.stopBits == 2) state.StopBits = TWOSTOPBITS;
    if (settings.stopBits == 15) state.StopBits = ONE5STOPBITS;
    if (settings.dtrControl == 1) state.fDtrControl = DTR_CONTROL_DISABLE;
    if (settings.dtrControl == 2) state.fDtrControl = DTR_CONTROL_HANDSHAKE;
    if (settings.rtsControl == 1) state.fRtsControl = RTS_CONTROL_DISABLE;
    if (settings.rtsControl == 2) state.fRtsControl = RTS_CONTROL_HANDSHAKE;
    if (settings.ctsFlow != 0) state.fOutxCtsFlow = settings.ctsFlow == 2;
    if (settings.dsrFlow != 0) state.fOutxDsrFlow = settings.dsrFlow == 2;
    state.XonChar = static_cast<char>(kXon);
    state.XoffChar = static_cast<char>(kXoff);
    if (settings.xonXoff != 0) {
        const bool on = settings.xonXoff == 2;
        state.fInX = on;
        state.fOutX = on;
        state.XonLim = on ? kXonLimit : 0;
        state.XoffLim = on ? kXoffLimit : 0;
    }
}

PortWin::PortWin(Handle port)
    : port_(std::move(port)),
      readEvent_(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      writeEvent_(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

ResultCode PortWin::Prepare(const SerialSettings& settings) {
    ::SetupComm(port_.get(), kBuffer, kBuffer);
    DCB state{};
    state.DCBlength = sizeof state;
    if (!::GetCommState(port_.get(), &state)) return result::PortStateUnreadable;
    ApplyLineSettings(settings, DefaultsOf(settings.device, state), state);
    if (!::SetCommState(port_.get(), &state)) return result::PortStateUnwritable;
    Purge();
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = MAXDWORD;  // a read returns at once with what is there
    ::SetCommTimeouts(port_.get(), &timeouts);
    return result::Success;
}

int PortWin::Finish(OVERLAPPED& operation, BOOL started, DWORD wait) {
    if (!started) {
        if (::GetLastError() != ERROR_IO_PENDING) return -1;
        if (::WaitForSingleObject(operation.hEvent, wait) != WAIT_OBJECT_0) ::CancelIo(port_.get());
    }
    DWORD moved = 0;
    if (!::GetOverlappedResult(port_.get(), &operation, &moved, TRUE) &&
        ::GetLastError() != ERROR_OPERATION_ABORTED) {
        return -1;
    }
    return static_cast<int>(moved);
}

bool PortWin::Write(std::span<const char> octets, std::uint32_t limit) {
    OVERLAPPED operation{};
    operation.hEvent = writeEvent_.get();
    ::ResetEvent(writeEvent_.get());
    const BOOL started =
        ::WriteFile(port_.get(), octets.data(), static_cast<DWORD>(octets.size()), nullptr, &operation);
    return Finish(operation, started, limit) == static_cast<int>(octets.size());
}

int PortWin::Read(std::span<char> buffer, std::uint32_t wait) {
    const DWORD start = ::GetTickCount();
    for (;;) {
        const DWORD elapsed = ::GetTickCount() - start;
        const DWORD left = elapsed < wait ? wait - elapsed : 0;
        OVERLAPPED operation{};
        operation.hEvent = readEvent_.get();
        ::ResetEvent(readEvent_.get());
        const BOOL started =
            ::ReadFile(port_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, &operation);
        const int size = Finish(operation, started, left);
        if (size != 0 || left == 0) return size;
        // Where a read of an empty line returns at once, it is asked again after a short pause.
        if (::GetTickCount() - start < wait) ::Sleep(std::min(kPollPause, left));
    }
}

void PortWin::Purge() {
    ::PurgeComm(port_.get(), PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR);
}

// A port without modem lines refuses these; that is no fault of the connection.
void PortWin::SetDtr(bool on) { ::EscapeCommFunction(port_.get(), on ? SETDTR : CLRDTR); }
void PortWin::SetRts(bool on) { ::EscapeCommFunction(port_.get(), on ? SETRTS : CLRRTS); }

namespace {

class MachineOpener final : public SerialOpener {
  public:
    ResultCode OpenPort(const SerialSettings& settings, std::unique_ptr<SerialDevice>& device,
                        std::uint32_t& systemError) override {
        const std::string path = "\\\\.\\" + std::string(Trim(settings.device));
        Handle handle(::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OVERLAPPED, nullptr));
        if (!handle) {
            systemError = ::GetLastError();
            return result::PortOpenFailed;
        }
        auto port = std::make_unique<PortWin>(std::move(handle));
        if (const ResultCode code = port->Prepare(settings); code != result::Success) return code;
        device = std::move(port);
        return result::Success;
    }

    ResultCode OpenTelephony(const SerialSettings& settings, std::unique_ptr<SerialDevice>& device) override {
        return OpenTelephonyPort(SystemTelephonyApi(), settings, device);
    }
};

}  // namespace

SerialOpener& MachineSerialOpener() {
    static MachineOpener opener;
    return opener;
}
