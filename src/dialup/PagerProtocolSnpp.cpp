#include "dialup/PagerProtocolSnpp.h"

#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/Text.h"
#include "foundation/net/TransportResult.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::uint32_t kConnectTime = 10'000;  // ms
constexpr std::int32_t kLastPort = 0xFFFF;
constexpr std::int32_t kGoodbye = 221;
constexpr std::size_t kNumberSize = 4;  // of a reply, with the separator behind it

// The first octets that are more than two are the reply, whatever comes behind them.
constexpr DialogueManner kManner{
    .saidFormat = "Sending Command: [%s]",
    .heardFormat = "Response : [%s]",
    .logMask = logmask::kLog,
    .unit = DialogueManner::Unit::kOctets,
    .isEnd = [](std::string_view octets) { return octets.size() > 2; },
    .sendTime = 3000,
    .restOfLine = 1000,
    .longestLine = 512,
    .largestReply = 65'536,
};

struct Meaning {
    std::int32_t reply;
    ResultCode code;
};
constexpr auto kMeanings = std::to_array<Meaning>({
    {220, result::Success},
    {kGoodbye, result::Success},
    {250, result::Success},
    {354, result::Success},
    {550, result::SnppInvalidPager},
});

ResultCode MeaningOf(std::int32_t reply) {
    const auto* const row = std::ranges::find(kMeanings, reply, &Meaning::reply);
    return row != kMeanings.end() ? row->code : result::SnppUnsupported;
}

std::string WithoutLineBreaks(std::string_view text) {
    std::string line(text);
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    return std::string(Trim(line));
}

}  // namespace

CPagerProtocolSnpp::CPagerProtocolSnpp(Clock& clock)
    : CPagerProtocolSnpp(std::make_unique<CKorTcpSocket>(clock), clock) {}

CPagerProtocolSnpp::CPagerProtocolSnpp(std::unique_ptr<Stream> socket, Clock& clock)
    : CVrmBase("CPagerProtocolSnpp", clock), socket_(std::move(socket)) {}

void CPagerProtocolSnpp::Clear() {
    settings = {};
    providerResponse_.clear();
    SetAdvancedSettings({});
    SetLogFile({});
}

ResultCode CPagerProtocolSnpp::Check(const CPagerMessageX& message) const {
    if (socket_ == nullptr) return result::SocketError;
    if (!address::IsDialNumber(message.Recipient)) return result::InvalidRecipient;
    if (message.Data.empty()) return result::SnppInvalidPager;
    return settings.server.empty() ? result::SnppNoProvider : result::Success;
}

ResultCode CPagerProtocolSnpp::Send(const CPagerMessageX& message) {
    ResultCode code = Check(message);
    if (code != result::Success) return code;
    GuardPasswords({settings.providerPassword});
    providerResponse_.clear();
    isLost_ = false;
    code = Connect();
    if (code != result::Success) return code;
    ReplyDialogue server(*socket_, *this, kManner);
    code = Deliver(server, message);
    End(server);
    return code;
}

ResultCode CPagerProtocolSnpp::Connect() {
    const std::int32_t port = settings.serverPort;
    const ResultCode code = port < 1 || port > kLastPort
                                ? result::InvalidPort
                                : TransportResult(socket_->Connect(
                                      settings.server, static_cast<std::uint16_t>(port), kConnectTime));
    if (code == result::Success) {
        Log(logmask::kLog, "CONNECT [Velqar Build %s], Server=[%s:%d], Result = [SUCCESS]", product::kBuild,
            settings.server.c_str(), port);
    } else {
        Log(logmask::kLog, "CONNECT [Velqar Build %s], Server=[%s:%d], Result = [%d : %s]", product::kBuild,
            settings.server.c_str(), port, code.Number(), std::string(DescribeError(code.Number())).c_str());
    }
    return code;
}

ResultCode CPagerProtocolSnpp::Deliver(ReplyDialogue& server, const CPagerMessageX& message) {
    ResultCode code = Judge(server.Hear(Times()));
    if (code == result::Success) code = Login(server);
    if (code == result::Success) code = Judge(server.Ask("PAGE " + message.Recipient, Times()));
    if (code == result::Success) code = Judge(server.Ask("DATA", Times()));
    if (code == result::Success) code = SendText(server, message.Data);
    if (code == result::Success) code = Judge(server.Ask("SEND", Times()));
    return code;
}

ResultCode CPagerProtocolSnpp::Login(ReplyDialogue& server) {
    const std::string& password = settings.providerPassword;
    if (password.empty()) return result::Success;
    return Judge(server.Ask("LOGI " + password, "LOGI " + Shown(password), Times()));
}

// One line, which ends the text only where it really ends.
ResultCode CPagerProtocolSnpp::SendText(ReplyDialogue& server, const std::string& text) {
    const int outcome = server.Say(text == "." ? ". " : text);
    return outcome == tcp::kSuccess ? Judge(server.Ask(".", Times())) : Outcome(outcome);
}

void CPagerProtocolSnpp::End(ReplyDialogue& server) {
    if (!isLost_) (void)Judge(server.Ask("QUIT", Times()));
    socket_->Disconnect();
    Log(logmask::kLog, "DISCONNECT");
}

ReplyTimes CPagerProtocolSnpp::Times() const {
    return {.piece = static_cast<std::uint32_t>(std::max(settings.serverTimeout, 0))};
}

ResultCode CPagerProtocolSnpp::Judge(const Reply& reply) {
    if (reply.outcome != tcp::kSuccess) return Outcome(reply.outcome);
    const std::string& text = reply.pieces.back();
    if (text.size() > kNumberSize && reply.code != kGoodbye) {
        providerResponse_ = WithoutLineBreaks(std::string_view(text).substr(kNumberSize));
    }
    return MeaningOf(reply.code);
}

ResultCode CPagerProtocolSnpp::Outcome(int outcome) {
    if (outcome == tcp::kTotalTimedOut) return result::SnppTimedOut;
    isLost_ = outcome != tcp::kBufferFull;
    return TransportResult(outcome);
}
