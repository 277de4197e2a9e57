#include "foundation/ras/KorRas.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"

#include <algorithm>
#include <functional>

namespace {

constexpr std::uint32_t kPoll = 500;           // ms
constexpr std::uint32_t kHangUpTime = 10'000;  // ms
constexpr std::uint32_t kFirstBuffer = 704;    // octets: one adapter
constexpr std::uint32_t kLargestBuffer = 16 << 20;
constexpr int kBufferTries = 4;  // a list may grow between two of them

constexpr ResultCode kNotLoaded{-1};

constexpr std::uint32_t kHostMask = 0xFFFFFFFF;
constexpr std::uint32_t kDirect = 3;             // type of a route
constexpr std::uint32_t kNetworkManagement = 3;  // who made it
constexpr std::uint32_t kNotUsed = 0xFFFFFFFF;   // metric

ResultCode FromPlatform(std::uint32_t code) { return ResultCode(static_cast<std::int32_t>(code)); }

// The platform takes one line for each text; what goes into its phonebook is a file.
std::string Field(std::string_view text, std::size_t longest) {
    std::string field(text.substr(0, longest));
    std::replace_if(
        field.begin(), field.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return field;
}

std::string DialString(std::uint32_t contextId) {
    return contextId == 0 ? "*99#" : "*99***" + std::to_string(static_cast<std::int32_t>(contextId)) + "#";
}

bool IsTooSmall(std::uint32_t code) {
    return code == ras::kBufferOverflow || code == ras::kInsufficientBuffer;
}

// A list of the platform, empty when it cannot be had.
template <class Row>
std::vector<Row> ListOf(const std::function<std::uint32_t(std::uint32_t&, std::vector<Row>&)>& read) {
    std::uint32_t size = kFirstBuffer;
    for (int tries = 0; tries < kBufferTries && size <= kLargestBuffer; ++tries) {
        std::vector<Row> rows;
        const std::uint32_t code = read(size, rows);
        if (code == ras::kOk) return rows;
        if (!IsTooSmall(code)) break;
    }
    return {};
}

// The host in lower case, without its scheme.
std::string BareHost(std::string_view host) {
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (FindNoCase(host, scheme) == 0) {
            host.remove_prefix(scheme.size());
            break;
        }
    }
    std::string bare(host);
    std::transform(bare.begin(), bare.end(), bare.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return bare;
}

}  // namespace

CKorRas::CKorRas(Clock& clock, std::unique_ptr<RasPlatform> platform)
    : CKorBase("CKorRas", clock), platform_(std::move(platform)) {}

ResultCode CKorRas::Load() {
    if (!isLoaded_) isLoaded_ = platform_->Load();
    return isLoaded_ ? result::Success : result::FunctionMissing;
}

void CKorRas::SetCredentials(std::string user, std::string password) {
    user_ = std::move(user);
    password_ = std::move(password);
}

ResultCode CKorRas::CreateEntry(const RasEntry& entry) {
    const std::string name = Field(entry.name, ras::kEntryName);
    Log(logmask::kActivity | logmask::kVerbatim, "Creating DUN entry '%s'\n", name.c_str());
    const std::string dialString = DialString(entry.contextId);
    Log(logmask::kVerbatim, "Dialstring used for DUN entry: %s\n", dialString.c_str());

    std::uint32_t code = platform_->SetEntryProperties(name, {.device = Field(entry.device, ras::kDeviceName),
                                                              .deviceType = "modem",
                                                              .phoneNumber = dialString,
                                                              .options = ras::kModemLights,
                                                              .protocols = ras::kIpOnly,
                                                              .framing = ras::kPpp});
    if (code == ras::kOk) {
        ras::DialParameters parameters;
        parameters.entry = name;
        parameters.user = Field(entry.user, ras::kUserName);
        parameters.password = Field(entry.password, ras::kPassword);
        code = platform_->SetDialParameters(parameters);
    }
    if (code == ras::kOk) return result::Success;
    Log(logmask::kActivity | logmask::kVerbatim, "Error creating DUN entry, RAS Error %ld.\n",
        static_cast<long>(code));
    return result::GprsEntryFailed;
}

ResultCode CKorRas::Dial(const std::string& entry, std::uint32_t timeout) {
    if (!isLoaded_) return kNotLoaded;
    const Timer timer(GetClock(), timeout);
    (void)HangUp();  // what a failed call left keeps the modem, and its handle would be lost
    ras::DialParameters parameters;
    parameters.entry = Field(entry, ras::kEntryName);
    if (const std::uint32_t code = platform_->GetDialParameters(parameters); code != ras::kOk) {
        return FromPlatform(code);
    }
    parameters.user = Field(user_, ras::kUserName);
    parameters.password = Field(password_, ras::kPassword);
    if (const std::uint32_t code = platform_->Dial(parameters, connection_); code != ras::kOk) {
        return FromPlatform(code);
    }
    return AwaitLink(timer);
}

ResultCode CKorRas::AwaitLink(const Timer& timer) {
    while (!timer.Expired()) {
        bool connected = false;
        const ResultCode code = GetStatus(connected);
        if (code != result::Success || connected) return code;
        GetClock().Sleep(kPoll);
    }
    return result::RasNoAnswer;
}

ResultCode CKorRas::GetStatus(bool& connected) {
    connected = false;
    if (!isLoaded_) return kNotLoaded;
    if (connection_ == 0) return result::Success;
    std::uint32_t state = 0;
    const std::uint32_t code = platform_->GetState(connection_, state);
    connected = code == ras::kOk && state == ras::kConnected;
    return FromPlatform(code);
}

ResultCode CKorRas::HangUp() {
    if (!isLoaded_) return kNotLoaded;
    if (connection_ == 0) return result::Success;
    (void)platform_->HangUp(connection_);
    const Timer timer(GetClock(), kHangUpTime);
    bool connected = false;
    while (!timer.Expired() && GetStatus(connected) == result::Success) GetClock().Sleep(kPoll);
    connection_ = 0;
    return result::Success;
}

ras::Adapter CKorRas::FindAdapter(std::string_view adapterText) {
    const auto adapters = ListOf<ras::Adapter>(
        [this](std::uint32_t& size, auto& rows) { return platform_->GetAdapters(size, rows); });
    const auto found = std::find_if(adapters.rbegin(), adapters.rend(), [&](const ras::Adapter& adapter) {
        return adapter.description.find("PPP") != std::string::npos ||
               adapter.description.find(adapterText) != std::string::npos;
    });
    return found == adapters.rend() ? ras::Adapter{} : *found;
}

std::uint32_t CKorRas::LargestMetric() {
    std::uint32_t largest = 0;
    for (const ras::Route& route : ListOf<ras::Route>(
             [this](std::uint32_t&size, auto&rows) { return platform_->GetRoutes(size, rows); })) {
        if (route.metric1 != kNotUsed) largest = std::max(largest, route.metric1);
    }
    return largest;
}

ResultCode CKorRas::AddHostRoute(std::string_view host, std::string_view adapterText) {
    if (const ResultCode code = Load(); code != result::Success) return code;
    const ras::Adapter adapter = FindAdapter(adapterText);
    return FromPlatform(platform_->CreateRoute({
        .destination = platform_->ToAddress(BareHost(host)),
        .mask = kHostMask,
        .nextHop = adapter.address.empty() ? 0 : platform_->ToAddress(adapter.address),
        .interfaceIndex = adapter.index,
        .type = kDirect,
        .protocol = kNetworkManagement,
        .metric1 = LargestMetric() + 1,
        .metric2 = kNotUsed,
        .metric3 = kNotUsed,
        .metric4 = kNotUsed,
        .metric5 = kNotUsed,
    }));
}
