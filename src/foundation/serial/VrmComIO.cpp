#include "foundation/serial/VrmComIO.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>

namespace {
constexpr std::uint32_t kLineTime = 1000;
constexpr std::uint32_t kListCommandTime = 2000;
constexpr char kCarriageReturn = '\r';
constexpr std::string_view kPrompt = ">";  // what a modem asks for data with; no line end follows it
constexpr std::size_t kLongestResponse = 65536;
constexpr int kMostListed = 10000;

bool IsHexText(std::string_view line) {
    return line.size() >= 2 && line.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

}  // namespace

CVrmComIO::CVrmComIO(SerialOpener& opener, Clock& clock) : CKorComIO("CVrmComIO", opener, clock) {}

ResultCode CVrmComIO::Open(SerialSettings settings) {
    const bool port = ContainsNoCase(std::string_view(settings.device).substr(0, 3), "COM");
    if (port && settings.speed == 0) settings.speed = kDefaultSpeed;
    const ResultCode code = port ? OpenPort(settings) : OpenTelephony(settings);
    Log(logmask::kVerbatim, "OPEN DEVICE   [Velqar Build %s], device=[%s], baudrate=[%d], result=[%s]\n",
        product::kBuild, settings.device.c_str(), static_cast<int>(settings.speed),
        std::string(DescribeError(code)).c_str());
    return code;
}

void CVrmComIO::Close() {
    if (!IsOpen()) return;
    CKorComIO::Close();
    Log(logmask::kVerbatim, "CLOSE DEVICE\n");
}

void CVrmComIO::WriteString(std::string_view text) {
    if (IsLogging()) Log(logmask::kVerbatim, "WRITE STRING, string=[%s]\n", MaskPin(text).c_str());
    CKorComIO::WriteString(text, kCarriageReturn);
}

ResultCode CVrmComIO::ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                                 std::string_view prompt) {
    const ResultCode code = CKorComIO::ReadString(line, maximum, timeout, kCarriageReturn, prompt);
    if (code == result::Success) Log(logmask::kVerbatim, "READ STRING,  string=[%s]\n", line.c_str());
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

AtExchange CVrmComIO::Exchange(std::string_view command, std::uint32_t timeout, std::string_view expected) {
    if (!command.empty()) {
        if (IsLogging()) Log(logmask::kActivity, "Sending command [%s]...\n", MaskPin(command).c_str());
        WriteString(command);
    }
    AtExchange exchange;
    bool whole = true;  // a line that stalls half-way is taken up again by the next read
    const std::string_view prompt = expected == kPrompt ? kPrompt : std::string_view{};
    const Timer timer(GetClock(), timeout);
    do {
        std::string line;
        const std::uint32_t wait = std::min(kLineTime, timer.Remaining());
        if (ReadString(line, kLongestLine, wait, prompt) != result::Success) continue;
        exchange.reply = whole ? std::move(line) : exchange.reply + line;
        whole = LineEnded();
        if (whole && EndsReply(exchange.reply, expected)) break;
    } while (!timer.Expired());
    exchange.outcome = ClassifyReply(exchange.reply, whole ? expected : std::string_view{});
    // The line that closes an expected answer is read away; a prompt has none, the modem waits for data.
    if (exchange.outcome.status == AtStatus::kExpected && prompt.empty()) {
        std::string rest;
        (void)ReadString(rest, kLongestLine, kLineTime);
    }
    Log(logmask::kActivity, "Reply: [%s]\n", exchange.reply.c_str());
    return exchange;
}

AtExchange CVrmComIO::Collect(std::string_view command, std::uint32_t timeout) {
    WriteString(command);
    std::string all;
    std::string line;
    const Timer timer(GetClock(), timeout);
    while (all.size() < kLongestResponse) {
        std::string next;
        if (ReadString(next, kLongestLine, timer.Remaining()) != result::Success) break;
        line = std::move(next);
        if (!all.empty()) all += "\r\n";
        all += line;
        if (EndsLines(line) || timer.Expired()) break;
    }
    return {ClassifyReply(line, {}), std::move(all)};
}

ResultCode CVrmComIO::Listing(std::string_view command, std::string_view header, std::uint32_t timeout,
                              const TakeEntry& take) {
    WriteString(command);
    std::optional<std::int32_t> number;
    Timer quiet(GetClock(), timeout);
    for (int listed = 0; listed < kMostListed && !quiet.Expired();) {
        std::string line;
        if (ReadString(line, kLongestLine, timeout) != result::Success) break;
        Log(logmask::kActivity, "Reply: [%s]\n", line.c_str());
        if (const std::size_t at = FindNoCase(line, header); at != std::string::npos) {
            number = ToInt(std::string_view(line).substr(at + header.size()));
            quiet = Timer(GetClock(), timeout);
            ++listed;
        } else if (number && IsHexText(line)) {
            take(*number, line);
            number.reset();
        } else if (EndsLines(line)) {
            return ClassifyReply(line, {}).code;
        }
    }
    return result::ModemNoResponse;
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
