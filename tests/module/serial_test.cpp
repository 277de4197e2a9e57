// What only the Windows edge does: line settings, and telephony through a table of the test's own.
#include "foundation/serial/PortWin.h"
#include "foundation/serial/TelephonyWin.h"

#include <gtest/gtest.h>

namespace {

DCB Defaults() {
    DCB dcb{};
    dcb.BaudRate = 2400;
    dcb.ByteSize = 7;
    dcb.fParity = TRUE;
    dcb.Parity = EVENPARITY;
    dcb.StopBits = TWOSTOPBITS;
    return dcb;
}

TEST(LineSettings, KeepThePortsDefaultsForZero) {
    DCB state{};
    state.fRtsControl = RTS_CONTROL_TOGGLE;
    ApplyLineSettings({}, Defaults(), state);
    EXPECT_EQ(state.BaudRate, 2400U);
    EXPECT_EQ(state.ByteSize, 7);
    EXPECT_EQ(state.Parity, EVENPARITY);
    EXPECT_EQ(state.StopBits, TWOSTOPBITS);
    EXPECT_EQ(state.fRtsControl, static_cast<DWORD>(RTS_CONTROL_TOGGLE));
    EXPECT_EQ(state.fBinary, 1U);
    EXPECT_EQ(state.XonChar, 0x11);
    EXPECT_EQ(state.XoffChar, 0x13);
}

TEST(LineSettings, ApplyEveryCode) {
    for (const auto& [code, flag, parity] : {std::tuple{1U, 0U, NOPARITY},
                                             {2U, 1U, ODDPARITY},
                                             {3U, 1U, EVENPARITY},
                                             {4U, 1U, MARKPARITY},
                                             {5U, 1U, SPACEPARITY},
                                             {9U, 1U, EVENPARITY}}) {
        DCB state{};
        ApplyLineSettings({.parity = code}, Defaults(), state);
        EXPECT_EQ(state.fParity, flag) << code;
        EXPECT_EQ(state.Parity, parity) << code;
    }
    for (const auto& [code, stop] : {std::pair{1U, ONESTOPBIT}, {2U, TWOSTOPBITS}, {15U, ONE5STOPBITS}}) {
        DCB state{};
        ApplyLineSettings({.stopBits = code}, Defaults(), state);
        EXPECT_EQ(state.StopBits, stop);
    }
    DCB state{};
    SerialSettings on{.speed = 19200, .dataBits = 8};
    on.dtrControl = on.rtsControl = on.ctsFlow = on.dsrFlow = on.xonXoff = 2;
    ApplyLineSettings(on, Defaults(), state);
    EXPECT_EQ(state.BaudRate, 19200U);
    EXPECT_EQ(state.ByteSize, 8);
    EXPECT_EQ(state.fDtrControl, static_cast<DWORD>(DTR_CONTROL_HANDSHAKE));
    EXPECT_EQ(state.fRtsControl, static_cast<DWORD>(RTS_CONTROL_HANDSHAKE));
    EXPECT_TRUE(state.fOutxCtsFlow && state.fOutxDsrFlow && state.fInX && state.fOutX);
    EXPECT_EQ(state.XonLim, 8192);
    EXPECT_EQ(state.XoffLim, 4096);
    SerialSettings off;
    off.dtrControl = off.rtsControl = off.ctsFlow = off.dsrFlow = off.xonXoff = 1;
    ApplyLineSettings(off, Defaults(), state);
    EXPECT_EQ(state.fDtrControl, static_cast<DWORD>(DTR_CONTROL_DISABLE));
    EXPECT_FALSE(state.fOutxCtsFlow || state.fOutxDsrFlow || state.fInX || state.fOutX);
    EXPECT_EQ(state.XonLim, 0);
}

// --- a telephony library of three lines, one of which is for voice only

class TickClock : public Clock {
  public:
    std::uint32_t Ticks() override { return ticks; }
    void Sleep(std::uint32_t milliseconds) override { ticks += milliseconds; }
    std::int64_t Now() override { return 0; }
    CalendarTime ToLocal(std::int64_t) override { return {}; }
    std::int64_t FromLocal(const CalendarTime&) override { return 0; }
    std::uint32_t ticks = 0;
};
TickClock tickClock;

struct Script {
    LONG makeCall = 7;         // the request's number, or an error
    LONG outcome = 0;          // of the reply message
    int replyAfter = 1;        // polls until the reply; 0 = never
    bool failsAtOnce = false;  // a poll without a reply does not wait
    HANDLE port = nullptr;     // of the call
    int initializations = 0, shutdowns = 0, drops = 0, closes = 0, polls = 0;
    int failingStarts = 0;
    LINECALLPARAMS parameters{};
};
Script script;

constexpr const char* kLines[] = {"First Modem", "Telephone", "Second Modem"};
constexpr DWORD kVoiceLine = 1;

LONG WINAPI Initialize(LPHLINEAPP application, HINSTANCE, LINECALLBACK, LPCSTR, LPDWORD count, LPDWORD,
                       LPLINEINITIALIZEEXPARAMS) {
    ++script.initializations;
    if (script.failingStarts-- > 0) return static_cast<LONG>(0x80000048);
    *application = 1;
    *count = 3;
    return 0;
}
LONG WINAPI Negotiate(HLINEAPP, DWORD, DWORD, DWORD, LPDWORD version, LPLINEEXTENSIONID) {
    *version = 0x00020000;
    return 0;
}
LONG WINAPI Capabilities(HLINEAPP, DWORD line, DWORD, DWORD, LPLINEDEVCAPS capabilities) {
    const char* const name = kLines[line];
    capabilities->dwMediaModes =
        line == kVoiceLine ? LINEMEDIAMODE_INTERACTIVEVOICE : LINEMEDIAMODE_DATAMODEM | LINEMEDIAMODE_UNKNOWN;
    capabilities->dwLineNameOffset = sizeof(LINEDEVCAPS);
    capabilities->dwLineNameSize = static_cast<DWORD>(strlen(name) + 1);
    memcpy(reinterpret_cast<char*>(capabilities) + sizeof(LINEDEVCAPS), name, strlen(name) + 1);
    return 0;
}
LONG WINAPI OpenLine(HLINEAPP, DWORD, LPHLINE line, DWORD, DWORD, DWORD_PTR, DWORD, DWORD, LPLINECALLPARAMS) {
    *line = 2;
    return 0;
}
LONG WINAPI MakeCall(HLINE, LPHCALL call, LPCSTR, DWORD, LPLINECALLPARAMS parameters) {
    memcpy(&script.parameters, parameters, parameters->dwTotalSize);
    *call = script.makeCall >= 0 ? 3 : 0;
    return script.makeCall;
}
LONG WINAPI Message(HLINEAPP, LPLINEMESSAGE message, DWORD wait) {
    ++script.polls;
    if (script.replyAfter == 0 || script.polls < script.replyAfter) {
        if (!script.failsAtOnce) tickClock.Sleep(wait);
        return static_cast<LONG>(0x80000048);
    }
    message->dwMessageID = 12;
    message->dwParam1 = static_cast<DWORD_PTR>(script.makeCall);
    message->dwParam2 = static_cast<DWORD_PTR>(script.outcome);
    return 0;
}
LONG WINAPI Id(HLINE, DWORD, HCALL, DWORD, LPVARSTRING id, LPCSTR) {
    if (script.port == nullptr) return static_cast<LONG>(0x80000048);
    id->dwStringOffset = sizeof(VARSTRING);
    id->dwStringSize = sizeof(HANDLE);
    memcpy(reinterpret_cast<char*>(id) + sizeof(VARSTRING), &script.port, sizeof(HANDLE));
    return 0;
}
LONG WINAPI Drop(HCALL, LPCSTR, DWORD) { return ++script.drops; }
LONG WINAPI Deallocate(HCALL) { return 0; }
LONG WINAPI CloseLine(HLINE) { return ++script.closes; }
LONG WINAPI Shutdown(HLINEAPP) { return ++script.shutdowns; }

const TelephonyApi kTable{Initialize, Negotiate, Capabilities, OpenLine,  MakeCall, Message,
                          Id,         Drop,      Deallocate,   CloseLine, Shutdown};

TEST(Telephony, ListsItsDataModems) {
    script = {};
    EXPECT_EQ(TelephonyLines(kTable), (std::vector<std::string>{"First Modem", "Second Modem"}));
    EXPECT_EQ(script.shutdowns, 1);
    EXPECT_TRUE(TelephonyLines(TelephonyApi{}).empty());
}

TEST(Telephony, CallsHaveTheirCodes) {
    HANDLE port = ::CreateFileW(L"nul", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    struct Row {
        const char* name;
        const char* device;
        Script script;
        std::int32_t code;
        std::uint32_t waited;
        int polls;
    };
    for (const Row& row : {
             Row{"works", "Second Modem", {.port = port}, 0, 0, 1},
             Row{"after a while", "Second Modem", {.replyAfter = 4, .port = port}, 0, 1500, 4},
             Row{"after a second start", "Second Modem", {.port = port, .failingStarts = 1}, 0, 0, 1},
             Row{"unknown name", "Third Modem", {}, 30201, 0, 0},
             Row{"no telephony", "First Modem", {.failingStarts = 2}, 30201, 0, 0},
             Row{"refused at once", "First Modem", {.makeCall = static_cast<LONG>(0x80000048)}, 30203, 0, 0},
             Row{"in use at once", "First Modem", {.makeCall = static_cast<LONG>(0x80000005)}, 30204, 0, 0},
             Row{"in use", "First Modem", {.outcome = static_cast<LONG>(0x8000004B)}, 30204, 0, 1},
             Row{"line in use", "First Modem", {.outcome = static_cast<LONG>(0x80000005)}, 30204, 0, 1},
             Row{"failed", "First Modem", {.outcome = static_cast<LONG>(0x80000048)}, 30203, 0, 1},
             Row{"no reply", "First Modem", {.replyAfter = 0}, 30203, 5000, 10},
             Row{"no poll", "First Modem", {.replyAfter = 0, .failsAtOnce = true}, 30203, 5000, 10},
             Row{"no handle", "First Modem", {.port = nullptr}, 30202, 0, 1},
         }) {
        script = row.script;
        tickClock.ticks = 0xFFFFFF00;  // about to wrap
        const std::uint32_t start = tickClock.ticks;
        {
            Telephony telephony(kTable, tickClock);
            HANDLE found = nullptr;
            EXPECT_EQ(telephony.Connect(row.device, found), row.code) << row.name;
            EXPECT_EQ(tickClock.ticks - start, row.waited) << row.name;
            EXPECT_EQ(script.polls, row.polls) << row.name;
            if (row.code == 0) {
                EXPECT_EQ(found, port);
                EXPECT_EQ(script.parameters.dwBearerMode, 0x40U);
                EXPECT_EQ(script.parameters.dwMediaMode, 0x10U);
                EXPECT_EQ(script.parameters.dwCallParamFlags, 2U);
                EXPECT_EQ(script.parameters.dwAddressMode, 1U);
                EXPECT_EQ(script.parameters.dwTotalSize, 176U);
            }
        }
        EXPECT_EQ(script.shutdowns, script.initializations - row.script.failingStarts) << row.name;
    }
    ::CloseHandle(port);
}

}  // namespace
