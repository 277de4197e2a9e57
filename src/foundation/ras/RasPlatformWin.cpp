#include "foundation/ras/RasPlatformWin.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

// The records are those of Windows XP for 64 bits, which every later Windows takes as well: it tells the form
// by the size. Later headers have more at the end of RASENTRYA, RASDIALPARAMSA and RASCONNSTATUSA. The
// alignment is 4, also on 64 bits.
constexpr DWORD kDialParametersSize = offsetof(RASDIALPARAMSA, dwCallbackId) + sizeof(ULONG_PTR);
constexpr DWORD kEntrySize = offsetof(RASENTRYA, dwRedialPause) + sizeof(DWORD);
constexpr DWORD kStatusSize = 288;

static_assert(kDialParametersSize == 1064 && alignof(RASDIALPARAMSA) == 4);
static_assert(offsetof(RASDIALPARAMSA, szPhoneNumber) == 261 &&
              offsetof(RASDIALPARAMSA, szCallbackNumber) == 390 &&
              offsetof(RASDIALPARAMSA, szUserName) == 519 && offsetof(RASDIALPARAMSA, szPassword) == 776 &&
              offsetof(RASDIALPARAMSA, szDomain) == 1033 && offsetof(RASDIALPARAMSA, dwSubEntry) == 1052 &&
              offsetof(RASDIALPARAMSA, dwCallbackId) == 1056);

static_assert(kEntrySize == 2884 && sizeof(RASENTRYA) >= kEntrySize && alignof(RASENTRYA) == 4);
static_assert(offsetof(RASENTRYA, dwfOptions) == 4 && offsetof(RASENTRYA, szLocalPhoneNumber) == 27 &&
              offsetof(RASENTRYA, dwfNetProtocols) == 184 && offsetof(RASENTRYA, dwFramingProtocol) == 188 &&
              offsetof(RASENTRYA, szDeviceType) == 972 && offsetof(RASENTRYA, szDeviceName) == 989 &&
              offsetof(RASENTRYA, dwChannels) == 1756 && offsetof(RASENTRYA, dwType) == 1796 &&
              offsetof(RASENTRYA, dwfOptions2) == 2088);

static_assert(sizeof(RASCONNSTATUSA) >= kStatusSize && alignof(RASCONNSTATUSA) == 4);
static_assert(offsetof(RASCONNSTATUSA, rasconnstate) == 4 && offsetof(RASCONNSTATUSA, dwError) == 8 &&
              offsetof(RASCONNSTATUSA, szDeviceType) == 12 && offsetof(RASCONNSTATUSA, szPhoneNumber) == 158);

static_assert(sizeof(MIB_IPFORWARDROW) == 56 && offsetof(MIB_IPFORWARDROW, dwForwardIfIndex) == 16 &&
              offsetof(MIB_IPFORWARDROW, dwForwardMetric1) == 36 && offsetof(MIB_IPFORWARDTABLE, table) == 4);
static_assert(sizeof(IP_ADAPTER_INFO) == 704 && offsetof(IP_ADAPTER_INFO, Description) == 272 &&
              offsetof(IP_ADAPTER_INFO, Index) == 416);

static_assert(ras::kConnected == RASCS_Connected && ras::kModemLights == RASEO_ModemLights &&
              ras::kIpOnly == RASNP_Ip && ras::kPpp == RASFP_Ppp && ras::kEntryName == RAS_MaxEntryName &&
              ras::kUserName == UNLEN && ras::kPassword == PWLEN && ras::kDeviceName == RAS_MaxDeviceName);
static_assert(ras::kBufferOverflow == ERROR_BUFFER_OVERFLOW &&
              ras::kInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER &&
              ras::kFunctionMissing == ERROR_PROC_NOT_FOUND);

template <class Function>
void Look(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

// Cut to what the field holds with its zero.
template <std::size_t kSize>
void Put(char (&field)[kSize], const std::string& text) {
    field[text.copy(field, kSize - 1)] = '\0';
}

template <std::size_t kSize>
std::string Text(const char (&field)[kSize]) {
    return {field, strnlen(field, kSize)};
}

RASDIALPARAMSA Record(const ras::DialParameters& parameters) {
    RASDIALPARAMSA record{};
    record.dwSize = kDialParametersSize;
    Put(record.szEntryName, parameters.entry);
    Put(record.szPhoneNumber, parameters.phoneNumber);
    Put(record.szCallbackNumber, parameters.callbackNumber);
    Put(record.szUserName, parameters.user);
    Put(record.szPassword, parameters.password);
    Put(record.szDomain, parameters.domain);
    record.dwSubEntry = parameters.subEntry;
    return record;
}

HRASCONN ToPlatform(ras::Handle connection) { return reinterpret_cast<HRASCONN>(connection); }

MIB_IPFORWARDROW Row(const ras::Route& route) {
    MIB_IPFORWARDROW row{};
    row.dwForwardDest = route.destination;
    row.dwForwardMask = route.mask;
    row.dwForwardPolicy = route.policy;
    row.dwForwardNextHop = route.nextHop;
    row.dwForwardIfIndex = route.interfaceIndex;
    row.dwForwardType = route.type;
    row.dwForwardProto = route.protocol;
    row.dwForwardAge = route.age;
    row.dwForwardNextHopAS = route.nextHopSystem;
    row.dwForwardMetric1 = route.metric1;
    row.dwForwardMetric2 = route.metric2;
    row.dwForwardMetric3 = route.metric3;
    row.dwForwardMetric4 = route.metric4;
    row.dwForwardMetric5 = route.metric5;
    return row;
}

ras::Route FromRow(const MIB_IPFORWARDROW& row) {
    return {.destination = row.dwForwardDest,
            .mask = row.dwForwardMask,
            .policy = row.dwForwardPolicy,
            .nextHop = row.dwForwardNextHop,
            .interfaceIndex = row.dwForwardIfIndex,
            .type = static_cast<std::uint32_t>(row.dwForwardType),
            .protocol = static_cast<std::uint32_t>(row.dwForwardProto),
            .age = row.dwForwardAge,
            .nextHopSystem = row.dwForwardNextHopAS,
            .metric1 = row.dwForwardMetric1,
            .metric2 = row.dwForwardMetric2,
            .metric3 = row.dwForwardMetric3,
            .metric4 = row.dwForwardMetric4,
            .metric5 = row.dwForwardMetric5};
}

}  // namespace

bool RasApi::Complete() const {
    return getAdaptersInfo != nullptr && createIpForwardEntry != nullptr && getIpForwardTable != nullptr &&
           getEntryDialParams != nullptr && dial != nullptr && hangUp != nullptr &&
           getConnectStatus != nullptr && enumDevices != nullptr && enumEntries != nullptr &&
           enumConnections != nullptr && getLinkStatistics != nullptr;
}

SystemRas::SystemRas() : ipSupport_(::LoadLibraryA("iphlpapi.dll")), ras_(::LoadLibraryA("rasapi32.dll")) {
    if (const HMODULE library = ipSupport_.get(); library != nullptr) {
        Look(library, "GetAdaptersInfo", api_.getAdaptersInfo);
        Look(library, "CreateIpForwardEntry", api_.createIpForwardEntry);
        Look(library, "GetIpForwardTable", api_.getIpForwardTable);
    }
    if (const HMODULE library = ras_.get(); library != nullptr) {
        Look(library, "RasGetEntryDialParamsA", api_.getEntryDialParams);
        Look(library, "RasDialA", api_.dial);
        Look(library, "RasHangUpA", api_.hangUp);
        Look(library, "RasGetConnectStatusA", api_.getConnectStatus);
        Look(library, "RasEnumDevicesA", api_.enumDevices);
        Look(library, "RasEnumEntriesA", api_.enumEntries);
        Look(library, "RasEnumConnectionsA", api_.enumConnections);
        Look(library, "RasGetLinkStatistics", api_.getLinkStatistics);
        Look(library, "RasSetEntryPropertiesA", api_.setEntryProperties);
        Look(library, "RasSetEntryDialParamsA", api_.setEntryDialParams);
    }
}

const RasApi& RasPlatformWin::Api() {
    if (api_ == nullptr) {
        system_ = std::make_unique<SystemRas>();
        api_ = &system_->Api();
    }
    return *api_;
}

std::uint32_t RasPlatformWin::SetEntryProperties(const std::string& entry, const ras::EntryProperties& what) {
    if (Api().setEntryProperties == nullptr) return ras::kFunctionMissing;
    RASENTRYA record{};
    record.dwSize = kEntrySize;
    record.dwfOptions = what.options;
    Put(record.szLocalPhoneNumber, what.phoneNumber);
    record.dwfNetProtocols = what.protocols;
    record.dwFramingProtocol = what.framing;
    Put(record.szDeviceType, what.deviceType);
    Put(record.szDeviceName, what.device);
    return Api().setEntryProperties(nullptr, entry.c_str(), &record, kEntrySize, nullptr, 0);
}

std::uint32_t RasPlatformWin::SetDialParameters(const ras::DialParameters& parameters) {
    if (Api().setEntryDialParams == nullptr) return ras::kFunctionMissing;
    RASDIALPARAMSA record = Record(parameters);
    constexpr BOOL kForgetPassword = FALSE;
    return Api().setEntryDialParams(nullptr, &record, kForgetPassword);
}

std::uint32_t RasPlatformWin::GetDialParameters(ras::DialParameters& parameters) {
    RASDIALPARAMSA record{};
    record.dwSize = kDialParametersSize;
    Put(record.szEntryName, parameters.entry);
    BOOL hasPassword = FALSE;
    if (const DWORD code = Api().getEntryDialParams(nullptr, &record, &hasPassword); code != 0) return code;
    parameters = {.entry = Text(record.szEntryName),
                  .phoneNumber = Text(record.szPhoneNumber),
                  .callbackNumber = Text(record.szCallbackNumber),
                  .user = Text(record.szUserName),
                  .password = hasPassword ? Text(record.szPassword) : std::string(),
                  .domain = Text(record.szDomain),
                  .subEntry = record.dwSubEntry};
    return ras::kOk;
}

std::uint32_t RasPlatformWin::Dial(const ras::DialParameters& parameters, ras::Handle& connection) {
    RASDIALPARAMSA record = Record(parameters);
    HRASCONN handle = nullptr;
    const DWORD code = Api().dial(nullptr, nullptr, &record, 0, nullptr, &handle);
    connection = reinterpret_cast<ras::Handle>(handle);
    return code;
}

std::uint32_t RasPlatformWin::GetState(ras::Handle connection, std::uint32_t& state) {
    RASCONNSTATUSA status{};
    status.dwSize = kStatusSize;
    const DWORD code = Api().getConnectStatus(ToPlatform(connection), &status);
    state = static_cast<std::uint32_t>(status.rasconnstate);
    return code;
}

std::uint32_t RasPlatformWin::HangUp(ras::Handle connection) { return Api().hangUp(ToPlatform(connection)); }

std::uint32_t RasPlatformWin::GetAdapters(std::uint32_t& size, std::vector<ras::Adapter>& adapters) {
    std::vector<IP_ADAPTER_INFO> buffer(
        std::max<std::size_t>(1, (size + sizeof(IP_ADAPTER_INFO) - 1) / sizeof(IP_ADAPTER_INFO)));
    ULONG length = size;
    const DWORD code = Api().getAdaptersInfo(buffer.data(), &length);
    size = length;
    if (code != ERROR_SUCCESS) return code;
    for (const IP_ADAPTER_INFO* adapter = buffer.data(); adapter != nullptr; adapter = adapter->Next) {
        adapters.push_back(
            {Text(adapter->Description), adapter->Index, Text(adapter->IpAddressList.IpAddress.String)});
    }
    return ras::kOk;
}

std::uint32_t RasPlatformWin::GetRoutes(std::uint32_t& size, std::vector<ras::Route>& routes) {
    std::vector<DWORD> buffer((std::max<std::size_t>(size, sizeof(MIB_IPFORWARDTABLE)) + 3) / 4);
    auto* table = reinterpret_cast<MIB_IPFORWARDTABLE*>(buffer.data());
    ULONG length = size;
    const DWORD code = Api().getIpForwardTable(table, &length, FALSE);
    size = length;
    if (code != NO_ERROR) return code;
    const MIB_IPFORWARDROW* rows = table->table;
    for (DWORD row = 0; row < table->dwNumEntries; ++row) routes.push_back(FromRow(rows[row]));
    return ras::kOk;
}

std::uint32_t RasPlatformWin::CreateRoute(const ras::Route& route) {
    MIB_IPFORWARDROW row = Row(route);
    return Api().createIpForwardEntry(&row);
}

std::uint32_t RasPlatformWin::ToAddress(const std::string& text) { return ::inet_addr(text.c_str()); }

std::unique_ptr<RasPlatform> NewRasPlatform() { return std::make_unique<RasPlatformWin>(); }
