// A modem on a COM port or a telephony line: logged reads and writes, and the AT command exchange.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/AtReply.h"
#include "foundation/serial/KorComIO.h"

#include <string>
#include <string_view>

struct AtExchange {
    AtOutcome outcome;
    std::string reply;  // the last line read, trimmed
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
    ResultCode ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout);

    // Sends a command (unless empty) and reads lines until a final result, the expected text or the time-out
    // (ms). Digits of a PIN command are masked in the log.
    AtExchange Exchange(std::string_view command, std::uint32_t timeout, std::string_view expected = {});

    // Exchanges each command of a list separated by ";", 2000 ms each; the first failure ends it.
    ResultCode RunCommandList(std::string_view list);
};
