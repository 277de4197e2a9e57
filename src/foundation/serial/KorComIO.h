// One serial connection: opening, writing texts, reading octets and lines with time-outs.
#pragma once
#include "foundation/Clock.h"
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "foundation/serial/SerialDevice.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class CKorComIO : public CKorBase {
  public:
    static constexpr char kCtrlZ = 0x1A;   // ends data behind a prompt
    static constexpr char kEscape = 0x1B;  // calls them off
    static constexpr std::size_t kLongestText = 4096;

    CKorComIO(std::string className, SerialOpener& opener, Clock& clock = SystemClock());
    ~CKorComIO() override = default;

    bool IsOpen() const { return device_ != nullptr; }

    // 0, 30103 already open, 30104 cannot open, 30113 speed refused, 30109/30110 line state, 30201 to 30204
    // telephony.
    ResultCode OpenPort(const SerialSettings& settings);
    ResultCode OpenTelephony(const SerialSettings& settings);
    void Close();

    // Writes at most 4096 characters, and the terminator unless the text is empty or ends in Ctrl-Z. Gives
    // what is left of the time-out (ms) for an answer: the time in which the line took nothing counts, that
    // which the octets need at its speed and the delays do not.
    std::uint32_t WriteString(std::string_view text, char terminator,
                              std::uint32_t timeout = Timer::kForever);

    // 0, or 30114 when not open.
    ResultCode WriteBytes(std::string_view octets);

    // Reads until `count` octets are there, `enough` says so of those that are, or the time-out (ms) passes;
    // 30114, or 30115 when nothing came.
    using Enough = std::function<bool(std::string_view octets)>;
    ResultCode ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                         const Enough& enough = {});

    // Reads one line, trimmed; empty lines are skipped. A line ends at one of the line ends, at `maximum`
    // characters, or when it consists of `prompt` (not empty) alone, after which no line end comes. 30114, or
    // 30115 when nothing came.
    ResultCode ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                          std::string_view lineEnds, std::string_view prompt = {});

    // Reads on at the beginning of a line, as ReadString would, and trims nothing. True when the line is
    // whole, false when the time-out (ms) came first.
    bool ReadOn(std::string& line, std::size_t maximum, std::uint32_t timeout, std::string_view lineEnds,
                std::string_view prompt = {});

    // How long the line has said nothing, in ms.
    std::uint32_t Silence() const { return GetClock().Ticks() - heardAt_; }

    // Gives what has been received and not been read. What waits to be written stays, other than in Purge.
    std::string TakeReceived();

    void Purge();
    void SetDtr(bool on);
    void SetRts(bool on);

  private:
    ResultCode Opened(ResultCode code, const SerialSettings& settings, std::unique_ptr<SerialDevice> device);
    bool Fill(std::uint32_t wait);
    std::uint32_t WireTime(std::size_t octets) const;
    void WriteSlowly(std::string_view octets);

    SerialOpener* opener_;
    std::unique_ptr<SerialDevice> device_;
    std::uint32_t writeDelay_ = 0;
    std::uint32_t characterDelay_ = 0;
    std::uint32_t speed_ = 0;  // bits per second
    std::array<char, 16384> received_{};
    std::size_t receivedAt_ = 0;
    std::size_t receivedEnd_ = 0;
    std::uint32_t heardAt_ = 0;  // tick of the last octets
};
