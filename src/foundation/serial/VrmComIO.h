// A modem on a COM port or a telephony line: logged reads and writes, and the AT command exchange.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/AtReply.h"
#include "foundation/serial/KorComIO.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct AtExchange {
    AtOutcome outcome;
    std::string reply;  // the last line read, trimmed; of Collect all lines
};

// One entry of a list.
struct AtEntry {
    std::int32_t number = 0;
    std::string values;   // what stands behind the header, the number included
    std::string hexText;  // its line
    bool whole = true;    // that line came to its end
};

class CVrmComIO : public CKorComIO {
  public:
    static constexpr std::uint32_t kDefaultSpeed = 115200;
    static constexpr std::size_t kLongestLine = 4096;

    explicit CVrmComIO(SerialOpener& opener, Clock& clock = SystemClock());

    // A device named "COM..." is a port (speed 0 = 115200), any other a telephony line.
    ResultCode Open(SerialSettings settings);
    void Close();

    // As the base's, with carriage return as the terminator, and logged. Carriage return and line feed both
    // end a line that is read.
    std::uint32_t WriteString(std::string_view text, std::uint32_t timeout = Timer::kForever);
    ResultCode ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                          std::string_view prompt = {});
    ResultCode WriteBytes(std::string_view octets);
    ResultCode ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                         const Enough& enough = {});

    // Sends a command (unless empty) and reads lines until a final result, the expected text or the time-out
    // (ms). Lines that the modem sends by itself are no answer. What was received before a command is
    // dropped; data for a prompt, which end in Ctrl-Z, drop nothing.
    AtExchange Exchange(std::string_view command, std::uint32_t timeout, std::string_view expected = {});

    // Sends a command and gives all lines of the reply, joined by CR LF, up to a line "OK" or an error, the
    // time-out (ms, kForever for none) or 64 KiB.
    AtExchange Collect(std::string_view command, std::uint32_t timeout);

    // Sends a command whose reply lists entries, and hands on each: a line with `header` and the entry's
    // values, then one of hexadecimal text. Other lines (unsolicited results, noise) are passed over. The
    // code of the final result; 30350 when there was silence for `timeout` ms, or no entry for 30 s.
    using TakeEntry = std::function<void(const AtEntry& entry)>;
    ResultCode Listing(std::string_view command, std::string_view header, std::uint32_t timeout,
                       const TakeEntry& take);

    // Exchanges each command of a list separated by ";", 2000 ms each; the first failure ends it.
    ResultCode RunCommandList(std::string_view list);

  protected:
    // Logs a text that stood on the line, in the one way that hides a PIN.
    void LogText(unsigned mask, const char* before, std::string_view text, const char* after = "]\n");

  private:
    enum class LineRead {
        kNothing,  // the time is over
        kHalf,     // the time is over within a line
        kSettled,  // a line without an end that says enough, and then silence
        kCut,      // longer than a line can be
        kWhole,
    };
    LineRead ReadReplyLine(std::string& line, const Timer& timer, std::string_view expected = {});
    std::uint32_t Say(std::string_view command, std::uint32_t timeout);
    void DropReceived();
    AtExchange HearReply(std::string_view command, const Timer& timer, std::string_view expected);
    bool HearFinalResult(std::string& reply, std::string rest);
    static void TakeWithout(std::optional<AtEntry>& entry, const TakeEntry& take);
    bool IsOverdue(AtStatus status);

    bool finalOwed_ = false;  // the last reply was not ended by its final result
};
