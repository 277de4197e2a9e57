#include "mms/SmtpSession.h"

#include "foundation/Base64.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::size_t kCodeSize = 3;
constexpr std::int32_t kReady = 220, kLoggedIn = 235, kDone = 250, kPrompt = 334, kGiveText = 354;
constexpr std::int32_t kUnknownScheme = 504;

// What the log has of a command of this many characters: a long one is taken for the mail, whatever it is.
std::string_view InLog(std::size_t size, std::string_view shown) {
    constexpr std::size_t kLongestShown = 1023;
    return size <= kLongestShown ? shown : "<MESSAGE DATA>";
}

// The fourth character tells whether more lines follow; a number alone is the last.
bool IsLastLine(std::string_view line) {
    if (line.size() > kCodeSize) return line[kCodeSize] == ' ';
    return line.size() == kCodeSize && std::ranges::all_of(line, IsDigit);
}

constexpr DialogueManner kManner{
    .saidFormat = "COMMAND : %s",
    .heardFormat = "RESPONSE: %s",
    .logMask = logmask::kLog | logmask::kActivity,
    .unit = DialogueManner::Unit::kLine,
    .isEnd = IsLastLine,
    // A mail of the largest size takes its time on a slow line; what stands still does not go on.
    .sendTime = 300'000,
    .stillTime = 3000,
    .restOfLine = 0,
    .longestLine = 8192,
    .largestReply = 65'536,
};
constexpr std::uint32_t kLineTime = 3000, kWholeTime = 60'000;
constexpr ReplyTimes kUsualTimes{.piece = kLineTime, .begin = 100, .whole = kWholeTime};
constexpr ReplyTimes kLoginTimes{.piece = kLineTime, .begin = 20'000, .whole = kWholeTime};
// What is said to QUIT matters to nobody.
constexpr ReplyTimes kFarewellTimes{.piece = kLineTime, .begin = 100, .whole = 3100};

// 0 for a line without a code.
std::int32_t CodeOf(std::string_view line) {
    constexpr std::int32_t kLowest = 100;
    const std::string_view digits = line.substr(0, kCodeSize);
    const bool isCode = digits.size() == kCodeSize && std::ranges::all_of(digits, IsDigit);
    return isCode && ToInt(digits) >= kLowest ? ToInt(digits) : 0;
}

ResultCode Wanting(std::int32_t code, std::int32_t wanted) {
    return code == wanted ? result::Success : ResultCode(code);
}

std::string_view LastLineOf(std::string_view lines) {
    const std::size_t end = lines.rfind('\n');
    return end == std::string_view::npos ? lines : lines.substr(end + 1);
}

// An address stays within its brackets: what stands behind them is parameters of the command.
std::string Path(std::string address) {
    std::ranges::replace_if(
        address, [](char c) { return c == '<' || c == '>'; }, ' ');
    return '<' + address + '>';
}

std::string Stuffed(std::string_view mail) {
    std::string text(mail.starts_with('.') ? "." : "");
    text += mail;
    ReplaceAll(text, "\r\n.", "\r\n..");
    return text;
}

}  // namespace

SmtpSession::SmtpSession(Stream& stream, CKorBase& log)
    : stream_(&stream), log_(&log), dialogue_(stream, log, kManner) {}

std::int32_t SmtpSession::Take(const Reply& reply) {
    replyText_.clear();
    for (const std::string& line : reply.pieces) {
        if (!replyText_.empty()) replyText_ += "\r\n";
        replyText_ += line;
    }
    const std::int32_t code = reply.outcome == tcp::kSuccess ? CodeOf(reply.pieces.back()) : 0;
    return code != 0 ? code : result::MailNoResponse.Number();
}

std::int32_t SmtpSession::Exchange(const std::string& line) {
    return Take(dialogue_.Ask(line, InLog(line.size(), line), kUsualTimes));
}

ResultCode SmtpSession::Greet() { return Wanting(Take(dialogue_.Hear(kUsualTimes)), kReady); }

ResultCode SmtpSession::Hello(const std::string& name) {
    return Exchange("HELO " + name) == kDone ? result::Success : result::MailHeloFailed;
}

// What a prompt asks for, in base64, and as the log may show it.
bool SmtpSession::FindAnswer(const std::string& account, const std::string& password, std::string& answer,
                             std::string& shown) const {
    const std::string_view line = LastLineOf(replyText_);
    const auto prompt = base64::Decode(line.substr(std::min(line.size(), kCodeSize + 1)));
    if (!prompt) return false;
    const bool isAccount = ContainsNoCase(*prompt, "Username:");
    if (!isAccount && !ContainsNoCase(*prompt, "Password:")) return false;
    answer = base64::Encode(isAccount ? account : password);
    const std::string mask = log_->Shown(password);
    shown = isAccount || mask == password ? answer : mask;
    return true;
}

// A prompt that asks for something else is declined, RFC 4954 section 4. No server has more than a few.
ResultCode SmtpSession::Login(const std::string& account, const std::string& password) {
    constexpr int kMostPrompts = 8;
    std::int32_t code = Exchange("AUTH LOGIN");
    if (code == kUnknownScheme) return result::MailAuthUnsupported;
    if (code != kPrompt) return ResultCode(code);
    for (int i = 0; i < kMostPrompts && code == kPrompt; ++i) {
        std::string answer = "*";
        std::string shown = answer;
        (void)FindAnswer(account, password, answer, shown);
        code = Take(dialogue_.Ask(answer, InLog(answer.size(), shown), kLoginTimes));
    }
    return Wanting(code, kLoggedIn);
}

ResultCode SmtpSession::From(const std::string& address) {
    return Wanting(Exchange("MAIL FROM: " + Path(address)), kDone);
}

ResultCode SmtpSession::To(const std::string& address) {
    return Wanting(Exchange("RCPT TO: " + Path(address)), kDone);
}

ResultCode SmtpSession::Data(std::string_view mail) {
    if (const ResultCode code = Wanting(Exchange("DATA"), kGiveText); code != result::Success) return code;
    const std::string text = Stuffed(mail) + "\r\n.";
    const int said = dialogue_.SayText(text, InLog(text.size() + 2, text));
    return Wanting(Take(dialogue_.HearAfter(said, kUsualTimes)), kDone);
}

void SmtpSession::Quit() {
    if (stream_->IsConnected()) (void)dialogue_.Ask("QUIT", kFarewellTimes);
}
