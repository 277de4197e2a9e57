#include "mms/Mm1Protocol.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/PushHeader.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/HexDump.h"
#include "foundation/MachineSettings.h"
#include "foundation/Product.h"
#include "foundation/Text.h"
#include "gsm/GsmInbox.h"
#include "gsm/GsmStatusPdu.h"
#include "gsm/PacketContext.h"
#include "mms/MmsNotificationReader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr unsigned kEvent = logmask::kActivity | logmask::kVerbatim;
constexpr std::size_t kLogRoom = 2048;             // of an entry, besides the texts in it
constexpr std::size_t kDumped = 2048;              // octets of a unit that a log shows
constexpr std::size_t kLargestReply = 1024;        // octets of what the centre answers to a unit
constexpr std::size_t kLargestMessage = 16 << 20;  // octets of a message that is fetched
constexpr std::size_t kLongestLocation = 2048;     // characters
constexpr std::size_t kShownLocation = 256;        // of one that is refused
constexpr std::uint32_t kDialTime = 20'000;        // ms
constexpr std::int32_t kDefaultTimeout = 60'000;   // ms

constexpr std::size_t kLongestAccessPoint = 100;  // octets, 3GPP TS 23.003
constexpr std::u16string_view kNotification = u"M-NOTIFICATION-IND URL=";

// Codes of Remote Access have results of their own.
constexpr std::int32_t kFirstRas = 600;
constexpr std::int32_t kLastRas = 805;
constexpr std::int32_t kRasBase = 31'000;

std::string Described(ResultCode code) { return std::string(DescribeError(code)); }

ResultCode ResultOfDialling(ResultCode code) {
    if (code == result::Success || code == result::RasNoAnswer) return code;
    const std::int32_t number = code.Number();
    if (number < kFirstRas || number > kLastRas) return result::GprsNotConnected;
    return ResultCode(kRasBase + number);
}

bool HasWebScheme(std::string_view url) {
    return FindNoCase(url, "http://") == 0 || FindNoCase(url, "https://") == 0;
}

// "http://10.10.10.10:8080", with nothing behind the port but a slash.
bool IsGateway(std::string_view text) {
    const HttpUrl url = HttpUrl::Parse(text);
    return HasWebScheme(text) && !url.host.empty() && url.port != 0 && url.path == "/";
}

bool IsFetchable(std::string_view location) {
    return location.size() <= kLongestLocation && HasWebScheme(location) &&
           !HttpUrl::Parse(location).host.empty();
}

}  // namespace

CMm1Protocol::CMm1Protocol(SerialOpener& opener, Clock& clock, std::unique_ptr<RasPlatform> ras,
                           std::unique_ptr<HttpTransport> http)
    : CVrmBase("CMmsProtocolMm1", clock),
      device_(opener, clock, {.noSim = "SIM card not inserted !\n"}),
      ras_(clock, std::move(ras)),
      http_(clock, std::move(http)),
      notifications_(MmsNotifications(),
                     [this](const MmsNotification& notification) {
                         const std::string location = OneLine(notification.contentLocation);
                         LogSized(kEvent, location.size() + kLogRoom, "New MMS waiting: [%s] at [%s]\n",
                                  location.c_str(), std::to_string(notification.expiry).c_str());
                     }),
      // A notification of which parts are missing is none: it waits for them as long as it takes.
      received_(clock, std::numeric_limits<std::int32_t>::max(), &notifications_) {}

void CMm1Protocol::SetLogFile(const std::string& name) {
    CVrmBase::SetLogFile(name);
    device_.SetLogFile(name);
    ras_.SetLogFile(name);
    http_.SetLogFile(name);
}

void CMm1Protocol::SetActivityFile(const std::string& name) {
    CVrmBase::SetActivityFile(name);
    device_.SetActivityFile(name);
    ras_.SetActivityFile(name);
    http_.SetActivityFile(name);
}

void CMm1Protocol::HidePasswords(std::vector<std::string> passwords) {
    device_.HidePasswords(passwords);
    ras_.HidePasswords(passwords);
    http_.HidePasswords(passwords);
    CVrmBase::HidePasswords(std::move(passwords));
}

void CMm1Protocol::Clear() {
    (void)ras_.HangUp();
    ras_.SetCredentials({}, {});
    http_.Close();
    isOnExisting_ = false;
    settings = {};
    providerResponse_.clear();
    messageId_.clear();
    received_.Clear();
    notifications_.Clear();
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
}

// The last lines of an operation; the code passes through.
ResultCode CMm1Protocol::Told(ResultCode code, const char* success, const char* failure, const char* last) {
    if (code == result::Success) {
        Log(kEvent, "%s", success);
    } else {
        TellError(code, failure);
        TellResult(code, last);
    }
    return code;
}

void CMm1Protocol::TellError(ResultCode code, const char* failure) {
    Log(kEvent, "MM1 Error %s message (%s).\n", failure, Described(code).c_str());
}

void CMm1Protocol::TellResult(ResultCode code, const char* last) {
    Log(kEvent, "%s%d (%s)\n", last, code.Number(), Described(code).c_str());
}

// --- connecting

ResultCode CMm1Protocol::Connect() {
    Guard();
    LogSettings();
    isOnExisting_ = false;
    std::optional<CGsmDevice::Session> modem;
    ResultCode code = CheckSettings();
    if (code == result::Success && UsesExisting()) {
        Log(kEvent, "MM1 Using the connection that this machine has...\n");
        isOnExisting_ = true;
    } else if (code == result::Success) {
        code = DialUp(modem);
    }
    if (code == result::Success) {
        Log(kEvent, "MM1 Successfully connected to data network.\n");
        return code;
    }
    TellError(code, "submitting");
    modem.reset();
    TellResult(code, "CONNECT ERROR #");
    return code;
}

void CMm1Protocol::LogSettings() {
    const std::pair<std::string, std::string> lines[] = {
        {"Velqar Build " + std::string(product::kBuild) + ", Device=[%s]\n", settings.device},
        {"Access Point Name     = [%s]\n", settings.accessPoint},
        {"Access Point Account  = [%s]\n", settings.account},
        {"Access Point Password = [%s]\n", Shown(settings.password)},
        {"MMSC Address          = [%s]\n", settings.mmsc},
        {"WAP Proxy             = [%s]\n", settings.gateway},
    };
    for (const auto& [format, value] : lines) {
        std::string line(format);
        line.replace(line.find("%s"), 2, OneLine(value));
        LogSized(logmask::kVerbatim, line.size() + kLogRoom, "%s", line.c_str());
    }
}

ResultCode CMm1Protocol::CheckSettings() {
    if (settings.mmsc.empty()) return result::MmscMissing;
    const std::string& name = settings.accessPoint;
    const bool hasAccessPoint = !name.empty() && name.size() <= kLongestAccessPoint && IsQuotable(name);
    if (!hasAccessPoint && !UsesExisting()) return result::ApnMissing;
    return CheckGateway();
}

ResultCode CMm1Protocol::CheckGateway() {
    if (settings.gateway.empty()) return UsesExisting() ? result::Success : result::WapGatewayMissing;
    return IsGateway(settings.gateway) ? result::Success : result::WapGatewayInvalid;
}

// Closes the modem for the dialling; what fails before that leaves it to the caller.
ResultCode CMm1Protocol::DialUp(std::optional<CGsmDevice::Session>& modem) {
    if (ras_.Load() != result::Success) return result::NoInstance;
    if (IsUp()) return result::Success;
    RasEntry entry{.name = "MMS on " + settings.device,
                   .device = settings.device,
                   .user = settings.account,
                   .password = settings.password};
    Log(kEvent, "MM1 Initializing modem...\n");
    modem.emplace(device_, ModemSettings());
    if (modem->Code() != result::Success) return modem->Code();
    if (const ResultCode code = PrepareModem(entry.contextId); code != result::Success) return code;
    modem.reset();
    if (const ResultCode code = Dial(entry); code != result::Success) return code;
    AddRoute(entry.name);
    return result::Success;
}

// Whether the connection of an earlier call still stands; what is left of one that does not is hung up, since
// it keeps the modem.
bool CMm1Protocol::IsUp() {
    bool connected = false;
    if (ras_.GetStatus(connected) == result::Success && connected) return true;
    (void)ras_.HangUp();
    return false;
}

GsmSettings CMm1Protocol::ModemSettings() const {
    GsmSettings modem;
    modem.device = settings.device;
    modem.messageStorage = settings.messageStorage;
    return modem;
}

ResultCode CMm1Protocol::PrepareModem(std::uint32_t& contextId) {
    // A modem for data alone may have no storages.
    if (const ResultCode code = InitialiseModem(); code == result::ModemNoResponse) return code;
    Log(kEvent, "MM1 Connecting GSM/UMTS datanetwork...\n");
    return PreparePacketContext(device_, settings.accessPoint, contextId);
}

ResultCode CMm1Protocol::InitialiseModem() {
    if (const ResultCode code = device_.Command("AT+CMEE=1"); code == result::ModemNoResponse) return code;
    return device_.AskStorages();
}

ResultCode CMm1Protocol::Dial(const RasEntry& entry) {
    if (const ResultCode code = ras_.CreateEntry(entry); code != result::Success) return code;
    ras_.SetCredentials(entry.user, entry.password);
    Log(kEvent, "Connecting to GPRS network (%s)...\n", settings.accessPoint.c_str());
    const ResultCode code = ras_.Dial(entry.name, kDialTime);
    if (code == result::Success) return code;
    Log(kEvent, "GPRS Connection failed, RAS error = %ld\n", static_cast<long>(code.Number()));
    (void)ras_.HangUp();
    return ResultOfDialling(code);
}

// What fails here may work all the same: the connection can be the machine's way to everything.
void CMm1Protocol::AddRoute(const std::string& entry) {
    const std::string host = HttpUrl::Parse(settings.gateway).host;
    const ResultCode code = ras_.AddHostRoute(host, entry);
    Log(logmask::kVerbatim, "Setting IP route to %s via dialup connection, result=%ld\n", host.c_str(),
        static_cast<long>(code.Number()));
}

ResultCode CMm1Protocol::CheckLink() {
    if (UsesExisting()) return isOnExisting_ ? result::Success : result::GprsNotConnected;
    if (ras_.Load() != result::Success) return result::NoInstance;
    return ras_.IsConnected() ? result::Success : result::GprsNotConnected;
}

ResultCode CMm1Protocol::Disconnect() {
    Log(kEvent, "MM1 Disconnecting...\n");
    http_.Close();
    const bool wasExisting = std::exchange(isOnExisting_, false) || UsesExisting();
    if (!wasExisting && ras_.Load() != result::Success) return result::NoInstance;
    (void)ras_.HangUp();
    Log(kEvent, "MM1 Disconnected.\n");
    return result::Success;
}

// --- sending

ResultCode CMm1Protocol::Send(CMmsMessage* message) {
    Guard();
    providerResponse_.clear();
    messageId_.clear();
    Log(kEvent, "MM1 Submitting message...\n");
    return Told(Submit(message), "MM1 Message successfully submitted.\n", "submitting",
                "SEND RESULT: ERROR ");
}

ResultCode CMm1Protocol::Submit(CMmsMessage* message) {
    if (const ResultCode code = CheckLink(); code != result::Success) return code;
    if (message == nullptr) return result::InvalidMessageObject;
    message->Protocol = mms::asMMS_PROTOCOL_MM1;
    if (const ResultCode code = message->Encode(); code != result::Success) return code;
    const std::string_view unit = message->EncodedMessage;
    Log(logmask::kVerbatim, "Sender address: %s\n", OneLine(message->From).c_str());
    Log(logmask::kVerbatim, "Maximum MMS size is set to %ld bytes\n", static_cast<long>(settings.sizeLimit));
    if (std::cmp_greater(unit.size(), settings.sizeLimit)) {
        Log(kEvent, "Data size exceeds MMS size limit (%ld bytes > %ld bytes)\n",
            static_cast<long>(unit.size()), static_cast<long>(settings.sizeLimit));
        return result::MmsTooLarge;
    }
    if (const ResultCode code = Post("m-send-req", unit); code != result::Success) return code;
    const HttpReply answer = http_.TakeReply();
    LogHex(answer.body);
    Log(kEvent, "Receiving [m-send-conf]...\n");
    Mm1Reply reply = ReadSendConf(answer.body);
    Log(logmask::kVerbatim, "MMSC response code : [%02X]\n", reply.status);
    Take(reply);
    return reply.code;
}

void CMm1Protocol::Take(Mm1Reply& reply) {
    providerResponse_ = std::move(reply.text);
    messageId_ = std::move(reply.messageId);
    const std::string text = OneLine(ToAnsi(providerResponse_));
    const std::string id = OneLine(messageId_);
    LogSized(logmask::kVerbatim, text.size() + kLogRoom, "MMSC response text : [%s]\n", text.c_str());
    LogSized(logmask::kVerbatim, id.size() + kLogRoom, "MMSC messageid     : [%s]\n", id.c_str());
}

// Posts a unit to the MMS centre.
ResultCode CMm1Protocol::Post(const char* unit, std::string_view octets) {
    if (settings.mmsc.empty()) return result::MmscMissing;
    // Two blanks before "No-Cache" and a host without its port: these lines have always been so.
    const std::string type(mms::kContentType);
    http_.settings.postHeaders =
        "Content-Length: " + std::to_string(octets.size()) + "\r\nContent-Type: " + type +
        "\r\nAccept: " + type +
        "\r\nCache-Control:  No-Cache\r\nHost: " + HttpUrl::Parse(settings.mmsc).host + "\r\n";
    http_.settings.largestBody = kLargestReply;
    const ResultCode code = Request(settings.mmsc, octets);
    if (code != result::Success) return code;
    LogHex(octets);
    Log(kEvent, "Sending [%s]...\n", unit);
    return code;
}

// One request through the gateway.
ResultCode CMm1Protocol::Request(const std::string& url, std::optional<std::string_view> body) {
    if (const ResultCode code = CheckGateway(); code != result::Success) return code;
    HttpSettings& to = http_.settings;
    to.proxy.clear();
    if (!settings.gateway.empty()) {
        const HttpUrl gateway = HttpUrl::Parse(settings.gateway);
        to.proxy = gateway.host + ':' + std::to_string(gateway.port);
    }
    const std::int64_t timeout = settings.timeout > 0 ? settings.timeout : kDefaultTimeout;
    to.timeout = static_cast<std::uint32_t>((timeout + 999) / 1000);
    to.keepAlive = AdvancedSetting("HttpKeepAlive", 1) != 0;
    const ResultCode code = http_.Request(url, body);
    Log(logmask::kActivity, "Http Connect Result = [%s]\n", Described(code).c_str());
    return code;
}

void CMm1Protocol::LogHex(std::string_view octets) {
    if (!IsLogging()) return;
    std::string dump = "Packet HEX Dump:\n\n";
    DumpOctets(dump, octets.substr(0, kDumped));
    LogSized(logmask::kVerbatim, dump.size() + kLogRoom, "%s", dump.c_str());
}

// --- fetching

ResultCode CMm1Protocol::Retrieve(const std::string& contentLocation, CMmsMessage& message) {
    Guard();
    providerResponse_.clear();
    messageId_.clear();
    Log(kEvent, "MM1 Retrieving message...\n");
    return Told(Fetch(contentLocation, message), "MM1 Message successfully retrieved.\n", "retrieving",
                "RETRIEVE RESULT: ERROR ");
}

ResultCode CMm1Protocol::Fetch(const std::string& contentLocation, CMmsMessage& message) {
    if (const ResultCode code = CheckLink(); code != result::Success) return code;
    if (!IsFetchable(contentLocation)) {
        Log(kEvent, "Content location is no HTTP URL, it is not asked for: [%s]\n",
            OneLine(contentLocation.substr(0, kShownLocation)).c_str());
        return result::InvalidHost;
    }
    http_.settings.getHeaders = "Accept: " + std::string(mms::kContentType) + "\r\n";
    http_.settings.largestBody = kLargestMessage;
    Log(kEvent, "Sending [WAP-GET]...\n");
    if (const ResultCode code = Request(contentLocation, std::nullopt); code != result::Success) return code;
    HttpReply answer = http_.TakeReply();
    LogReply(answer);
    Mm1Reply reply = ReadRetrieveConf(answer.body);
    Take(reply);
    if (reply.code == result::Success && !answer.isWhole) reply.code = result::MmscCorrupt;
    const bool isDamaged = reply.code == result::MmscCorrupt;
    if (reply.code != result::Success && !isDamaged) return reply.code;
    message.SetEncoded(std::move(answer.body));
    const ResultCode code = message.Decode();
    // A message that is not whole stays at the centre, from where it may come whole another time.
    if (code == result::Success && !isDamaged) Acknowledge(contentLocation, reply.transactionId);
    return reply.code;
}

void CMm1Protocol::LogReply(const HttpReply& reply) {
    Log(kEvent, "Receiving [WAP-GET Reply]...\n");
    Log(logmask::kVerbatim, "HTTP RESPONSE CODE  : %ld\n", static_cast<long>(reply.status));
    LogSized(logmask::kVerbatim, reply.contentType.size() + kLogRoom, "HTTP CONTENT-TYPE   : %s\n",
             reply.contentType.c_str());
    Log(logmask::kVerbatim, "HTTP CONTENT-LENGTH : %ld\n", static_cast<long>(reply.body.size()));
    LogHex(reply.body);
}

// The message is here; what becomes of the answer changes nothing in that.
void CMm1Protocol::Acknowledge(const std::string& contentLocation, const std::string& transactionId) {
    const bool inTransaction = !transactionId.empty();
    const std::string notified =
        inTransaction ? std::string() : notifications_.TransactionOf(contentLocation);
    if (!inTransaction && notified.empty()) return;
    const char* unit = inTransaction ? "m-acknowledge-ind" : "m-notifyresp-ind";
    const std::string octets = inTransaction ? AcknowledgeInd(transactionId) : NotifyRespInd(notified);
    const ResultCode code = Post(unit, octets);
    if (code != result::Success) {
        Log(kEvent, "Sending [%s] failed: %d (%s)\n", unit, code.Number(), Described(code).c_str());
    }
}

// --- notifications

ResultCode CMm1Protocol::FirstNotification(CSmsMessageX& message) {
    const ResultCode code = ReadNotifications();
    const ResultCode found = received_.First(message);
    return found == result::NoMoreMessages && code != result::Success ? code : found;
}

ResultCode CMm1Protocol::CountNotifications(std::size_t& count) {
    const ResultCode code = ReadNotifications();
    count = received_.Count();
    return code;
}

ResultCode CMm1Protocol::ReadNotifications() {
    Guard();
    if (ras_.IsConnected() && IsUp()) return result::Success;
    Log(logmask::kVerbatim, "RETRIEVE MESSAGES FROM STORAGE : [%s]\n",
        StorageLogName(settings.messageStorage, StorageUse::kMessages));
    received_.Clear();
    notifications_.Clear();
    const ResultCode code = ReadStorages();
    received_.Process();
    KeepNotificationsOnly();
    return code;
}

ResultCode CMm1Protocol::ReadStorages() {
    const GsmSettings modem = ModemSettings();
    const CGsmDevice::Session session(device_, modem);
    if (session.Code() != result::Success) return session.Code();
    if (const ResultCode code = InitialiseModem(); code != result::Success) return code;
    // Reports and messages to others than the phone's MMS reader are none of this channel's.
    const GsmInboxUse use{
        .isOther = [this](const std::string& pdu,
                          const std::string& /*key*/) { return CGsmStatusPdu(pdu).Decode(GetClock()); },
        .take =
            [this](CSmsMessageX message) {
                if (message.DestinationPort == wapport::kPush) received_.Add(std::move(message));
            }};
    ResultCode first = result::Success;
    for (const GsmStorage* storage :
         StoragesToRead(modem.messageStorage, StorageUse::kMessages, device_.OfferedStorages())) {
        const ResultCode code = ReadInbox(device_, *storage, use);
        if (first == result::Success) first = code;
    }
    return first;
}

// Other pushes come to the same port, reports on messages sent and damaged units among them.
void CMm1Protocol::KeepNotificationsOnly() {
    CSmsMessageX message;
    for (std::size_t index = 0; received_.ByIndex(index, message) == result::Success;) {
        if (message.Format == sms::asMESSAGEFORMAT_NOTIFICATION_MMS &&
            message.Data.starts_with(kNotification)) {
            ++index;
        } else {
            received_.Remove(index);
        }
    }
}

// --- the modem, and provider files

ResultCode CMm1Protocol::EnterPin(std::string_view pin) {
    Guard();
    return device_.EnterPin(ModemSettings(), pin);
}

ResultCode CMm1Protocol::SendCommand(std::string_view command, std::int32_t timeout, std::string& response) {
    Guard();
    return device_.SendCommand(ModemSettings(), command, timeout, response);
}

std::vector<ProviderRow> CMm1Protocol::ProviderRows() {
    constexpr const char* kProvider = "Provider";
    return {
        {kProvider, "ProviderAPN", &settings.accessPoint},
        {kProvider, "ProviderAPNAccount", &settings.account},
        {kProvider, "ProviderAPNPassword", &settings.password},
        {kProvider, "ProviderWAPGateway", &settings.gateway},
        {kProvider, "ProviderMMSC", &settings.mmsc},
        {kProvider, "ProviderMessageSizeLimit", &settings.sizeLimit},
    };
}

ResultCode CMm1Protocol::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}

ResultCode CMm1Protocol::SaveConfig(const std::string& file) {
    const ResultCode code = SaveProviderFile(file, ProviderRows());
    if (code != result::Success) {
        LogSized(kEvent, file.size() + kLogRoom,
                 "Saving MMS settings to file [%s], result: ERROR #%ld (%s)\n", OneLine(file).c_str(),
                 static_cast<long>(code.Number()), Described(code).c_str());
    }
    return code;
}

std::string CMm1Protocol::ProvidersFolder() {
    std::string root = MachineInstallRoot();
    if (root.empty()) return {};
    if (!root.ends_with('\\')) root += '\\';
    return root + "Providers";
}
