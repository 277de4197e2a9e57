#include "mms/MmsProtocolMm4.h"

#include "foundation/ComputerName.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/net/TransportResult.h"
#include "mms/MM4Body.h"
#include "mms/MmsAddresses.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t kConnectTime = 10'000;  // ms
constexpr std::int32_t kTlsPort = 465;
constexpr std::int32_t kLastPort = 0xFFFF;
constexpr std::size_t kRuleLength = 118;

std::string TextOf(ResultCode code) { return std::string(DescribeError(code)); }

// Whatever happens, no connection outlives its message.
struct HangUp {
    Stream& socket;
    ~HangUp() { (void)socket.Disconnect(); }
};

}  // namespace

CMmsProtocolMm4::CMmsProtocolMm4(Clock& clock)
    : CMmsProtocolMm4(std::make_unique<CKorTcpSocket>(clock), clock) {}

CMmsProtocolMm4::CMmsProtocolMm4(std::unique_ptr<Stream> socket, Clock& clock)
    : CVrmBase("CMmsProtocolMm4", clock), socket_(std::move(socket)) {}

void CMmsProtocolMm4::Clear() {
    settings = {};
    sizeLimit_ = kLargestMessage;
    providerResponse_.clear();
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
}

void CMmsProtocolMm4::SetMessageSizeLimit(std::int32_t octets) {
    sizeLimit_ = std::min(octets, kLargestMessage);
}

std::vector<ProviderRow> CMmsProtocolMm4::ProviderRows() {
    constexpr const char* kProvider = "Provider";
    return {
        {kProvider, "ProviderHost", &settings.host},
        {kProvider, "ProviderPort", &settings.port},
        {kProvider, "ProviderAccount", &settings.account},
        {kProvider, "ProviderPassword", &settings.password},
        {kProvider, "ProviderDomain", &settings.domain},
        {kProvider, "ProviderMM4Format", &settings.format},
        {kProvider, "ProviderMM4Version", &settings.version},
    };
}

ResultCode CMmsProtocolMm4::SaveConfig(const std::string& file) {
    return SaveProviderFile(file, ProviderRows());
}
ResultCode CMmsProtocolMm4::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}

ResultCode CMmsProtocolMm4::Send(CMmsMessage* message) {
    providerResponse_.clear();
    GuardPasswords({settings.password});
    Log(logmask::kActivity, "MM4 Submitting message...\n");
    const ResultCode code = message != nullptr ? Submit(*message) : result::InvalidMessageObject;
    if (code == result::Success) {
        Log(logmask::kActivity, "MM4 Message successfully submitted.\n");
    } else {
        Log(logmask::kActivity, "MM4 Error submitting message (%s).\n", TextOf(code).c_str());
    }
    return code;
}

ResultCode CMmsProtocolMm4::Submit(CMmsMessage& message) {
    message.Protocol = mms::asMMS_PROTOCOL_MM4;
    message.Settings.version = settings.version;
    message.Settings.variation = settings.format;
    ResultCode code = message.Encode();
    if (code == result::Success) code = CheckSize(message.EncodedMessage);
    if (code != result::Success) return code;
    Log(logmask::kActivity, "MM4 Connecting server (%s)...\n", settings.host.c_str());
    code = CheckServer();
    if (code == result::Success) code = Connect();
    if (code != result::Success) return code;

    const HangUp afterwards{*socket_};
    SmtpSession server(*socket_, *this);
    code = LogIn(server);
    if (code == result::Success) code = Deliver(server, message);
    providerResponse_ = server.ReplyText();
    server.Quit();
    Log(logmask::kLog | logmask::kActivity, "DISCONNECTED");
    return code;
}

// Three quarters are about what the parts hold before they are in base64.
ResultCode CMmsProtocolMm4::CheckSize(const std::string& mail) {
    Log(logmask::kVerbatim, "Maximum MMS size is set to %d bytes", sizeLimit_);
    const std::int64_t quarters = static_cast<std::int64_t>(mail.size()) * 3;
    if (quarters <= std::int64_t{sizeLimit_} * 4) return result::Success;
    Log(logmask::kVerbatim, "Data size exceeds MMS size limit (%lld bytes)",
        static_cast<long long>(quarters / 4));
    return result::MmsTooLarge;
}

ResultCode CMmsProtocolMm4::CheckServer() const {
    if (settings.host.empty()) return result::MailInvalidHost;
    if (settings.port == kTlsPort) return result::MailSslUnsupported;
    return settings.port < 1 || settings.port > kLastPort ? result::InvalidPort : result::Success;
}

ResultCode CMmsProtocolMm4::Connect() {
    const ResultCode code = TransportResult(
        socket_->Connect(settings.host, static_cast<std::uint16_t>(settings.port), kConnectTime));
    const std::string text = TextOf(code);
    Log(logmask::kLog, "%s", std::string(kRuleLength, '-').c_str());
    Log(logmask::kLog, "CONNECT [Velqar Build %s], Server=[%s:%d], Result=[%s]", product::kBuild,
        settings.host.c_str(), settings.port, text.c_str());
    Log(logmask::kActivity, "CONNECT Server=[%s:%d], Result=[%s]", settings.host.c_str(), settings.port,
        text.c_str());
    return code;
}

ResultCode CMmsProtocolMm4::LogIn(SmtpSession& server) {
    ResultCode code = server.Greet();
    if (code == result::Success) code = server.Hello(ComputerName());
    const bool proves = !settings.account.empty() && AdvancedSetting("SmtpAuthentication", 1) != 0;
    return code == result::Success && proves ? server.Login(settings.account, settings.password) : code;
}

ResultCode CMmsProtocolMm4::Deliver(SmtpSession& server, const CMmsMessage& message) {
    Log(logmask::kActivity, "MM4 Submitting message...\n");
    ResultCode code = server.From(MailboxOf(mms::SenderOf(message)));
    if (code == result::Success) code = NameRecipients(server, message);
    return code == result::Success ? server.Data(message.EncodedMessage) : code;
}

// One index runs through the lists, so that each begins where it stood at the end of the one before: the
// first addresses of later lists are passed over. Kept so.
ResultCode CMmsProtocolMm4::NameRecipients(SmtpSession& server, const CMmsMessage& message) {
    std::size_t index = 0;
    for (const CMmsRecipients& list : message.Recipients) {
        if (list.IsEmpty()) continue;
        for (;;) {
            const std::string_view address = list.Address(index++);
            if (address.empty()) break;
            const ResultCode code = server.To(MailboxOf(mms::BareAddress(address)));
            if (code != result::Success) return code;
        }
    }
    return result::Success;
}

// Of "Name <user@host>" what stands in the brackets; an address without "@" is one of the domain.
std::string CMmsProtocolMm4::MailboxOf(std::string_view address) const {
    const std::size_t bracket = address.rfind('<');
    if (bracket != std::string_view::npos && address.ends_with('>')) {
        address = address.substr(bracket + 1, address.size() - bracket - 2);
    }
    std::string mailbox(address);
    if (address.find('@') == std::string_view::npos) mailbox += '@' + settings.domain;
    return mailbox;
}
