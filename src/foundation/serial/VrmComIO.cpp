#include "foundation/serial/VrmComIO.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {
constexpr std::uint32_t kLineTime = 1000;
constexpr std::uint32_t kListCommandTime = 2000;
constexpr char kCarriageReturn = '\r';
constexpr std::string_view kLineEnds = "\r\n";
constexpr std::string_view kPortPath = R"(\\.\)";
constexpr std::string_view kPrompt = ">";  // what a modem asks for data with; no line end follows it
constexpr std::size_t kLongestResponse = 65536;
constexpr int kMostListed = 10000;
constexpr std::uint32_t kLongestWithoutEntry = 30000;

bool IsHexText(std::string_view line) {
    return line.size() >= 2 && line.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

// The name of a port as the settings want it, of the ways in which users write it: `\\.\COM12`, "COM3:".
// Other names stay as they are.
std::string DeviceName(const std::string& written) {
    std::string_view name = Trim(written);
    if (name.starts_with(kPortPath)) name.remove_prefix(kPortPath.size());
    if (FindNoCase(name, "COM") != 0) return written;
    if (name.ends_with(':')) name.remove_suffix(1);
    return std::string(name);
}

// What was written, without the octet that ends data.
std::string_view Echo(std::string_view written) {
    if (written.ends_with(CKorComIO::kCtrlZ)) written.remove_suffix(1);
    return Trim(written);
}

bool IsSettled(std::string_view half, std::string_view expected) {
    if (half.empty() || AtUnsolicited().Takes(half, expected)) return false;
    return IsFinalResult(half) || (!expected.empty() && ContainsNoCase(half, expected));
}

}  // namespace

CVrmComIO::CVrmComIO(SerialOpener& opener, Clock& clock) : CKorComIO("CVrmComIO", opener, clock) {}

ResultCode CVrmComIO::Open(SerialSettings settings) {
    const std::string written = std::exchange(settings.device, DeviceName(settings.device));
    const bool port = FindNoCase(settings.device, "COM") == 0;
    if (port && settings.speed == 0) settings.speed = kDefaultSpeed;
    const ResultCode code = port ? OpenPort(settings) : OpenTelephony(settings);
    if (code == result::Success) finalOwed_ = false;
    Log(logmask::kVerbatim, "OPEN DEVICE   [Velqar Build %s], device=[%s], baudrate=[%d], result=[%s]\n",
        product::kBuild, OneLine(written).c_str(), static_cast<int>(settings.speed),
        std::string(DescribeError(code)).c_str());
    return code;
}

void CVrmComIO::Close() {
    if (!IsOpen()) return;
    CKorComIO::Close();
    Log(logmask::kVerbatim, "CLOSE DEVICE\n");
}

void CVrmComIO::LogText(unsigned mask, const char* before, std::string_view text, const char* after) {
    if (IsLogging()) Log(mask, "%s%s%s", before, MaskPin(text).c_str(), after);
}

std::uint32_t CVrmComIO::WriteString(std::string_view text, std::uint32_t timeout) {
    LogText(logmask::kVerbatim, "WRITE STRING, string=[", text);
    return CKorComIO::WriteString(text, kCarriageReturn, timeout);
}

ResultCode CVrmComIO::ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                                 std::string_view prompt) {
    const ResultCode code = CKorComIO::ReadString(line, maximum, timeout, kLineEnds, prompt);
    if (code == result::Success) LogText(logmask::kVerbatim, "READ STRING,  string=[", line);
    return code;
}

ResultCode CVrmComIO::WriteBytes(std::string_view octets) {
    Log(logmask::kVerbatim, "WRITE BYTES, #bytes=[%d]\n", static_cast<int>(octets.size()));
    return CKorComIO::WriteBytes(octets);
}

ResultCode CVrmComIO::ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                                const Enough& enough) {
    const ResultCode code = CKorComIO::ReadBytes(octets, count, timeout, enough);
    if (code != result::Success) {
        Log(logmask::kVerbatim, "READ BYTES, #bytes=[%d]\n", static_cast<int>(octets.size()));
    }
    return code;
}

// --- the lines of a reply

// Reads on at `line`, a beginning or empty, until the timer ends at the latest.
CVrmComIO::LineRead CVrmComIO::ReadReplyLine(std::string& line, const Timer& timer,
                                             std::string_view expected) {
    const std::string_view prompt = expected == kPrompt ? kPrompt : std::string_view{};
    if (!IsOpen()) return LineRead::kNothing;
    LineRead read = LineRead::kNothing;
    do {
        const std::uint32_t silence = IsSettled(Trim(line), expected) ? std::min(Silence(), kLineTime) : 0;
        const std::uint32_t wait = std::min(kLineTime - silence, timer.Remaining());
        if (ReadOn(line, kLongestLine, wait, kLineEnds, prompt)) {
            read = line.size() < kLongestLine ? LineRead::kWhole : LineRead::kCut;
        } else if (Silence() >= kLineTime && IsSettled(Trim(line), expected)) {
            read = LineRead::kSettled;
        } else if (timer.Expired()) {
            read = LineRead::kHalf;
        }
    } while (read == LineRead::kNothing);
    if (Trim(line).empty()) return LineRead::kNothing;
    LogText(logmask::kVerbatim, "READ STRING,  string=[", Trim(line));
    return read;
}

void CVrmComIO::DropReceived() {
    std::string received = TakeReceived();
    const std::string_view dropped = Trim(received);
    if (dropped.empty()) return;
    LogText(logmask::kVerbatim, "DROP STRING,  string=[", dropped);
    std::ranges::replace(received, '\n', '\r');
    for (const std::string_view line : Split(received, "\r")) {
        if (EndsLines(Trim(line))) finalOwed_ = false;
    }
}

// Writes a command, and gives what is left of its time-out.
std::uint32_t CVrmComIO::Say(std::string_view command, std::uint32_t timeout) {
    if (!command.ends_with(kCtrlZ)) DropReceived();
    return WriteString(command, timeout);
}

// An "OK" that ends the reply before: the answer may be yet to come.
bool CVrmComIO::IsOverdue(AtStatus status) {
    return status == AtStatus::kOk && std::exchange(finalOwed_, false);
}

// --- the three ways to read a reply

AtExchange CVrmComIO::Exchange(std::string_view command, std::uint32_t timeout, std::string_view expected) {
    if (!command.empty()) {
        LogText(logmask::kActivity, "Sending command [", command, "]...\n");
        timeout = Say(command, timeout);
    }
    AtExchange exchange = HearReply(command, Timer(GetClock(), timeout), expected);
    LogText(logmask::kActivity, "Reply: [", exchange.reply);
    return exchange;
}

AtExchange CVrmComIO::HearReply(std::string_view command, const Timer& timer, std::string_view expected) {
    AtExchange exchange;
    std::optional<AtExchange> overdue;
    AtUnsolicited unsolicited;
    do {
        std::string raw;
        const LineRead read = ReadReplyLine(raw, timer, expected);
        const std::string_view line = Trim(raw);
        if (read == LineRead::kNothing) break;
        if (unsolicited.Takes(line, expected)) continue;
        const bool isAnswer = read == LineRead::kWhole || read == LineRead::kSettled;
        exchange.reply = line;
        exchange.outcome = {AtStatus::kUnexpected, result::ModemUnexpectedResponse};
        if (Echo(line) == Echo(command)) continue;
        if (isAnswer || IsFinalResult(line)) exchange.outcome = ClassifyReply(line, expected);
        if (exchange.outcome.status == AtStatus::kUnexpected) continue;
        // A prompt has no result before it: an "OK" is of another command.
        const bool isNoPrompt = expected == kPrompt && exchange.outcome.status == AtStatus::kOk;
        if (IsOverdue(exchange.outcome.status) || isNoPrompt) {
            overdue = std::exchange(exchange, {});
            continue;
        }
        // Behind a prompt nothing comes, the modem waits for data.
        if (exchange.outcome.status == AtStatus::kExpected && expected != kPrompt)
            finalOwed_ = !HearFinalResult(exchange.reply, read == LineRead::kSettled ? raw : std::string());
        return exchange;
    } while (!timer.Expired());
    return overdue.value_or(std::move(exchange));
}

// Reads away what follows an expected answer, up to its final result. `rest` is an answer without its line
// end, which may go on.
bool CVrmComIO::HearFinalResult(std::string& reply, std::string rest) {
    const Timer timer(GetClock(), kLineTime);
    AtUnsolicited unsolicited;
    bool isAnswer = !rest.empty();
    do {
        if (ReadReplyLine(rest, timer) == LineRead::kNothing) break;
        const std::string_view line = Trim(rest);
        if (isAnswer) {
            reply = line;
        } else if (!unsolicited.Takes(line) && IsFinalResult(line)) {
            return true;
        }
        isAnswer = false;
        rest.clear();
    } while (!timer.Expired());
    return false;
}

AtExchange CVrmComIO::Collect(std::string_view command, std::uint32_t timeout) {
    const Timer timer(GetClock(), Say(command, timeout));
    AtExchange exchange;
    AtUnsolicited unsolicited;
    bool ended = false;
    while (!ended && exchange.reply.size() < kLongestResponse) {
        std::string raw;
        if (ReadReplyLine(raw, timer) == LineRead::kNothing) break;
        const std::string_view line = Trim(raw);
        if (!exchange.reply.empty()) exchange.reply += "\r\n";
        exchange.reply += line;
        exchange.outcome = {AtStatus::kUnexpected, result::ModemUnexpectedResponse};
        if (unsolicited.Takes(line)) continue;
        if (IsFinalResult(line)) exchange.outcome = ClassifyReply(line, {});
        ended = EndsLines(line) || timer.Expired();
    }
    return exchange;
}

// An entry whose PDU did not come as one is told as cut.
void CVrmComIO::TakeWithout(std::optional<AtEntry>& entry, const TakeEntry& take) {
    if (!entry) return;
    entry->whole = false;
    take(*entry);
    entry.reset();
}

ResultCode CVrmComIO::Listing(std::string_view command, std::string_view header, std::uint32_t timeout,
                              const TakeEntry& take) {
    std::uint32_t wait = Say(command, timeout);
    std::optional<AtEntry> entry;
    std::optional<ResultCode> overdue;
    AtUnsolicited unsolicited;
    Timer noEntry(GetClock(), kLongestWithoutEntry);
    for (int listed = 0; listed < kMostListed && !noEntry.Expired(); wait = timeout) {
        std::string raw;
        const LineRead read = ReadReplyLine(raw, Timer(GetClock(), std::min(wait, noEntry.Remaining())));
        if (read == LineRead::kNothing) break;
        const std::string_view line = Trim(raw);
        LogText(logmask::kActivity, "Reply: [", line);
        if (unsolicited.Takes(line)) continue;
        if (const std::size_t at = FindNoCase(line, header); at != std::string::npos) {
            TakeWithout(entry, take);
            const std::string_view values = line.substr(at + header.size());
            entry.emplace();
            entry->number = ToInt(values);
            entry->values = values;
            noEntry = Timer(GetClock(), kLongestWithoutEntry);
            ++listed;
        } else if (entry && IsHexText(line)) {
            entry->hexText = line;
            entry->whole = read == LineRead::kWhole;
            take(*entry);
            entry.reset();
        } else if (EndsLines(line)) {
            TakeWithout(entry, take);
            const AtOutcome outcome = ClassifyReply(line, {});
            if (!IsOverdue(outcome.status)) return outcome.code;
            overdue = outcome.code;
        }
        if (read == LineRead::kHalf) break;
    }
    finalOwed_ = !overdue;
    return overdue.value_or(result::ModemNoResponse);
}

ResultCode CVrmComIO::RunCommandList(std::string_view list) {
    for (const std::string_view command : Split(list, ";")) {
        if (Trim(command).empty()) continue;
        const AtExchange exchange = Exchange(command, kListCommandTime);
        if (exchange.outcome.code != result::Success) return exchange.outcome.code;
        if (exchange.outcome.status != AtStatus::kOk) return result::ModemUnexpectedResponse;
    }
    return result::Success;
}
