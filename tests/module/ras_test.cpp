// The records that the Remote Access functions get, through a table of the test's own.
#include "foundation/ras/RasPlatformWin.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

// What the functions were called with last.
struct Asked {
    RASENTRYA entry{};
    DWORD entrySize = 0;
    RASDIALPARAMSA parameters{};
    std::string name;
    BOOL forget = TRUE;
    DWORD statusSize = 0;
    MIB_IPFORWARDROW row{};
} asked;

const HRASCONN kConnection = reinterpret_cast<HRASCONN>(0x1234);

DWORD WINAPI SetEntry(LPCSTR book, LPCSTR name, LPRASENTRYA entry, DWORD size, LPBYTE info, DWORD infoSize) {
    EXPECT_TRUE(book == nullptr && info == nullptr && infoSize == 0);
    asked.name = name;
    asked.entry = *entry;
    asked.entrySize = size;
    return 0;
}
DWORD WINAPI SetParameters(LPCSTR, LPRASDIALPARAMSA parameters, WINBOOL forget) {
    asked.parameters = *parameters;
    asked.forget = forget;
    return 5;
}
DWORD WINAPI GetParameters(LPCSTR, LPRASDIALPARAMSA parameters, LPBOOL hasPassword) {
    asked.parameters = *parameters;
    std::strcpy(parameters->szUserName, "stored");
    std::memset(parameters->szDomain, 'd', sizeof parameters->szDomain);  // without an end
    std::strcpy(parameters->szPassword, "handle");
    parameters->dwSubEntry = 4;
    *hasPassword = FALSE;
    return 0;
}
DWORD WINAPI Dial(LPRASDIALEXTENSIONS extensions, LPCSTR book, LPRASDIALPARAMSA parameters, DWORD kind,
                  LPVOID notifier, LPHRASCONN connection) {
    EXPECT_TRUE(extensions == nullptr && book == nullptr && kind == 0 && notifier == nullptr);
    EXPECT_EQ(*connection, nullptr);
    asked.parameters = *parameters;
    *connection = kConnection;
    return 678;
}
DWORD WINAPI HangUp(HRASCONN connection) { return connection == kConnection ? 0 : 6; }
DWORD WINAPI Status(HRASCONN connection, LPRASCONNSTATUSA status) {
    asked.statusSize = status->dwSize;
    status->rasconnstate = RASCS_Connected;
    return connection == kConnection ? 0 : 6;
}
DWORD WINAPI Adapters(PIP_ADAPTER_INFO adapters, PULONG size) {
    constexpr ULONG kNeeded = 2 * sizeof(IP_ADAPTER_INFO);
    if (*size < kNeeded) {
        *size = kNeeded;
        return ERROR_BUFFER_OVERFLOW;
    }
    adapters[0] = {};
    adapters[1] = {};
    adapters[0].Next = &adapters[1];
    std::strcpy(adapters[0].Description, "LAN");
    std::memset(adapters[1].Description, 'P', sizeof adapters[1].Description);  // without an end
    adapters[1].Index = 17;
    std::strcpy(adapters[1].IpAddressList.IpAddress.String, "10.1.2.3");
    return 0;
}
DWORD WINAPI Routes(PMIB_IPFORWARDTABLE table, PULONG size, WINBOOL) {
    constexpr ULONG kNeeded = sizeof(DWORD) + 3 * sizeof(MIB_IPFORWARDROW);
    if (*size < kNeeded) {
        *size = kNeeded;
        return ERROR_INSUFFICIENT_BUFFER;
    }
    table->dwNumEntries = 3;
    MIB_IPFORWARDROW* rows = table->table;
    for (DWORD row = 0; row < 3; ++row) {
        rows[row] = {};
        rows[row].dwForwardMetric1 = 10 * row;
    }
    return 0;
}
DWORD WINAPI CreateRow(PMIB_IPFORWARDROW row) {
    asked.row = *row;
    return 5010;
}
DWORD WINAPI EnumDevices(LPRASDEVINFOA, LPDWORD, LPDWORD) { return 0; }
DWORD WINAPI EnumEntries(LPCSTR, LPCSTR, LPRASENTRYNAMEA, LPDWORD, LPDWORD) { return 0; }
DWORD WINAPI EnumConnections(LPRASCONNA, LPDWORD, LPDWORD) { return 0; }
INT_PTR WINAPI Nothing() { return 0; }

RasApi Table() {
    return {Adapters,    CreateRow,   Routes,          GetParameters, Dial,     HangUp,       Status,
            EnumDevices, EnumEntries, EnumConnections, Nothing,       SetEntry, SetParameters};
}

TEST(RasPlatform, WantsElevenFunctions) {
    EXPECT_TRUE(RasPlatformWin(Table()).Load());
    EXPECT_FALSE(RasPlatformWin(RasApi{}).Load());
    RasApi without = Table();
    without.getLinkStatistics = nullptr;
    EXPECT_FALSE(RasPlatformWin(without).Load());
    RasApi entries = Table();
    entries.setEntryProperties = nullptr;
    entries.setEntryDialParams = nullptr;
    RasPlatformWin platform(entries);
    EXPECT_TRUE(platform.Load());
    EXPECT_EQ(platform.SetEntryProperties("E", {}), ras::kFunctionMissing);
    EXPECT_EQ(platform.SetDialParameters({}), ras::kFunctionMissing);
}

TEST(RasPlatform, HasTheSystemsLibrariesFromLoadToItsEnd) {
    const auto isThere = [] { return ::GetModuleHandleA("rasapi32.dll") != nullptr; };
    {
        RasPlatformWin first, second;
        EXPECT_FALSE(isThere());
        EXPECT_TRUE(first.Load() && second.Load() && first.Load());
        EXPECT_TRUE(isThere());
    }
    EXPECT_FALSE(isThere());
}

TEST(RasPlatform, WritesEntries) {
    const RasApi table = Table();
    RasPlatformWin platform(table);
    EXPECT_EQ(platform.SetEntryProperties("MMS on M", {.device = std::string(200, 'm'),
                                                       .deviceType = "modem",
                                                       .phoneNumber = "*99#",
                                                       .options = ras::kModemLights,
                                                       .protocols = ras::kIpOnly,
                                                       .framing = ras::kPpp}),
              0u);
    EXPECT_EQ(asked.name, "MMS on M");
    EXPECT_EQ(asked.entrySize, 2884u);
    EXPECT_EQ(asked.entry.dwSize, 2884u);
    EXPECT_EQ(asked.entry.dwfOptions, static_cast<DWORD>(RASEO_ModemLights));
    EXPECT_EQ(asked.entry.dwfNetProtocols, static_cast<DWORD>(RASNP_Ip));
    EXPECT_EQ(asked.entry.dwFramingProtocol, static_cast<DWORD>(RASFP_Ppp));
    EXPECT_STREQ(asked.entry.szDeviceType, "modem");
    EXPECT_EQ(std::string(asked.entry.szDeviceName), std::string(128, 'm'));
    EXPECT_STREQ(asked.entry.szLocalPhoneNumber, "*99#");

    ras::DialParameters parameters;
    parameters.entry = "MMS on M";
    parameters.user = "user";
    parameters.password = std::string(300, 'w');
    EXPECT_EQ(platform.SetDialParameters(parameters), 5u);
    EXPECT_EQ(asked.parameters.dwSize, 1064u);
    EXPECT_STREQ(asked.parameters.szEntryName, "MMS on M");
    EXPECT_STREQ(asked.parameters.szUserName, "user");
    EXPECT_EQ(std::string(asked.parameters.szPassword), std::string(256, 'w'));
    EXPECT_STREQ(asked.parameters.szDomain, "");
    EXPECT_FALSE(asked.forget);
}

TEST(RasPlatform, Connects) {
    const RasApi table = Table();
    RasPlatformWin platform(table);
    ras::DialParameters parameters;
    parameters.entry = "E";
    EXPECT_EQ(platform.GetDialParameters(parameters), 0u);
    EXPECT_EQ(asked.parameters.dwSize, 1064u);
    EXPECT_STREQ(asked.parameters.szEntryName, "E");
    EXPECT_EQ(parameters.user, "stored");
    EXPECT_EQ(parameters.password, "") << "only its stand-in is given";
    EXPECT_EQ(parameters.domain, std::string(16, 'd'));

    ras::Handle connection = 99;
    EXPECT_EQ(platform.Dial(parameters, connection), 678u);
    EXPECT_EQ(connection, 0x1234u);
    EXPECT_EQ(asked.parameters.dwSubEntry, 4u);
    EXPECT_STREQ(asked.parameters.szUserName, "stored");

    std::uint32_t state = 0;
    EXPECT_EQ(platform.GetState(connection, state), 0u);
    EXPECT_EQ(state, ras::kConnected);
    EXPECT_EQ(asked.statusSize, 288u);
    EXPECT_EQ(platform.GetState(1, state), 6u);
    EXPECT_EQ(platform.HangUp(connection), 0u);
}

TEST(RasPlatform, ReadsListsIntoTheRoomTheyNeed) {
    const RasApi table = Table();
    RasPlatformWin platform(table);
    std::uint32_t size = 704;
    std::vector<ras::Adapter> adapters;
    EXPECT_EQ(platform.GetAdapters(size, adapters), ras::kBufferOverflow);
    EXPECT_EQ(size, 1408u);
    EXPECT_EQ(platform.GetAdapters(size, adapters), 0u);
    ASSERT_EQ(adapters.size(), 2u);
    EXPECT_EQ(adapters[0].description, "LAN");
    EXPECT_EQ(adapters[1].description, std::string(132, 'P'));
    EXPECT_EQ(adapters[1].index, 17u);
    EXPECT_EQ(adapters[1].address, "10.1.2.3");

    size = 4;
    std::vector<ras::Route> routes;
    EXPECT_EQ(platform.GetRoutes(size, routes), ras::kInsufficientBuffer);
    EXPECT_EQ(platform.GetRoutes(size, routes), 0u);
    ASSERT_EQ(routes.size(), 3u);
    EXPECT_EQ(routes[2].metric1, 20u);
}

TEST(RasPlatform, CreatesARoute) {
    const RasApi table = Table();
    RasPlatformWin platform(table);
    EXPECT_EQ(platform.CreateRoute({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}), 5010u);
    DWORD values[14];
    std::memcpy(values, &asked.row, sizeof values);
    const DWORD wanted[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
    EXPECT_TRUE(std::equal(std::begin(values), std::end(values), std::begin(wanted)));
    EXPECT_EQ(platform.ToAddress("10.0.0.1"), 0x0100000Au);
    EXPECT_EQ(platform.ToAddress("wap.example"), 0xFFFFFFFFu);
}

}  // namespace
