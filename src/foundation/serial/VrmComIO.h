// A modem on a COM port or a telephony line: logged reads and writes, and the AT command exchange.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/AtReply.h"
#include "foundation/serial/KorComIO.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

struct AtExchange {
    AtOutcome outcome;
    std::string reply;  // the last line read, trimmed; of Collect all lines
};

class CVrmComIO : public CKorComIO {
  public:
    static constexpr std::uint32_t kDefaultSpeed = 115200;
    static constexpr std::size_t kLongestLine = 4096;

    explicit CVrmComIO(SerialOpener& opener, Clock& clock = SystemClock());

    // A device named "COM..." is a port (speed 0 = 115200), any other a telephony line.
    ResultCode Open(SerialSettings settings);
    void Close();

    // As the base's, with carriage return as the terminator, and logged.
    void WriteString(std::string_view text);
    ResultCode ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                          std::string_view prompt = {});
    ResultCode WriteBytes(std::string_view octets);
    ResultCode ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                         const Enough& enough = {});

    // Sends a command (unless empty) and reads lines until a final result, the expected text or the time-out
    // (ms).
    AtExchange Exchange(std::string_view command, std::uint32_t timeout, std::string_view expected = {});

    // Sends a command and gives all lines of the reply, joined by CR LF, up to "OK", "ERROR", the time-out
    // (ms) or 64 KiB.
    AtExchange Collect(std::string_view command, std::uint32_t timeout);

    // Sends a command whose reply lists entries, and hands on each: a line with `header` and the entry's
    // number, then one of hexadecimal text. Other lines (unsolicited results, noise) are passed over. The
    // code of the final result; 30350 when none came within `timeout` (ms) of the last entry.
    using TakeEntry = std::function<void(std::int32_t number, const std::string& hexText)>;
    ResultCode Listing(std::string_view command, std::string_view header, std::uint32_t timeout,
                       const TakeEntry& take);

    // Exchanges each command of a list separated by ";", 2000 ms each; the first failure ends it.
    ResultCode RunCommandList(std::string_view list);
};
