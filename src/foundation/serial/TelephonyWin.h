// Modems that are reached through the Windows Telephony API as a pass-through data call.
#pragma once
#include <windows.h>

#define TAPI_CURRENT_VERSION 0x00010004
#include "foundation/Clock.h"
#include "foundation/ResultCode.h"
#include "foundation/serial/SerialDevice.h"

#include <cstdint>
#include <memory>
#include <string>
#include <tapi.h>
#include <vector>

// The telephony functions that are used, looked up by name at run time. A test hands in a table of its own.
struct TelephonyApi {
    decltype(&::lineInitializeExA) initialize = nullptr;
    decltype(&::lineNegotiateAPIVersion) negotiateVersion = nullptr;
    decltype(&::lineGetDevCapsA) deviceCapabilities = nullptr;
    decltype(&::lineOpen) open = nullptr;
    decltype(&::lineMakeCallA) makeCall = nullptr;
    decltype(&::lineGetMessage) getMessage = nullptr;
    decltype(&::lineGetIDA) getId = nullptr;
    decltype(&::lineDrop) drop = nullptr;
    decltype(&::lineDeallocateCall) deallocateCall = nullptr;
    decltype(&::lineClose) close = nullptr;
    decltype(&::lineShutdown) shutdown = nullptr;

    bool Complete() const;
};

// The table of the system's telephony library; its functions are null where the library lacks them.
const TelephonyApi& SystemTelephonyApi();

// One use of telephony: from its start to its shutdown.
class Telephony {
  public:
    explicit Telephony(const TelephonyApi& api, Clock& clock = SystemClock()) : api_(&api), clock_(&clock) {}
    Telephony(const Telephony&) = delete;
    Telephony& operator=(const Telephony&) = delete;
    ~Telephony();

    // The names of the lines that carry data modems, in the order of their numbers.
    std::vector<std::string> Lines();

    // Calls the named line's modem and gives the port of the call, which this object keeps up; 0, 30201 to
    // 30204.
    ResultCode Connect(const std::string& name, HANDLE& port);

  private:
    struct Line {
        std::string name;
        bool isDataModem = false;
    };

    bool Start();
    void Stop();
    bool FindLine(const std::string& name);
    Line LineAt(DWORD number);
    ResultCode AwaitReply(LONG request);
    ResultCode MakeCall();
    ResultCode PortOfCall(HANDLE& port);

    const TelephonyApi* api_;
    Clock* clock_;
    HLINEAPP application_ = 0;
    HLINE line_ = 0;
    HCALL call_ = 0;
    DWORD lineCount_ = 0;
    DWORD lineNumber_ = 0;
    DWORD version_ = 0;
};

// The names of the machine's telephony modems, each usable as a device name.
std::vector<std::string> TelephonyLines(const TelephonyApi& api = SystemTelephonyApi());

// Opens the line of that name as a serial device. 0, or a code of Telephony::Connect or PortWin::Prepare.
ResultCode OpenTelephonyPort(const TelephonyApi& api, const SerialSettings& settings,
                             std::unique_ptr<SerialDevice>& device);
