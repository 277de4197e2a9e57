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
    static constexpr char kCtrlZ = 0x1A;
    static constexpr std::size_t kLongestText = 4096;

    CKorComIO(std::string className, SerialOpener& opener, Clock& clock = SystemClock());
    ~CKorComIO() override = default;

    bool IsOpen() const { return device_ != nullptr; }

    // 0, 30103 already open, 30104 cannot open, 30113 speed refused, 30109/30110 line state, 30201 to 30204
    // telephony.
    ResultCode OpenPort(const SerialSettings& settings);
    ResultCode OpenTelephony(const SerialSettings& settings);
    void Close();

    // Writes at most 4096 characters, and the terminator unless the text is empty or ends in Ctrl-Z.
    void WriteString(std::string_view text, char terminator);

    // 0, or 30114 when not open.
    ResultCode WriteBytes(std::string_view octets);

    // Reads until `count` octets are there, `enough` says so of those that are, or the time-out (ms) passes;
    // 30114, or 30115 when nothing came.
    using Enough = std::function<bool(std::string_view octets)>;
    ResultCode ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                         const Enough& enough = {});

    // Reads one line, trimmed; empty lines are skipped. A line ends at the terminator, at `maximum`
    // characters, or when it consists of `prompt` (not empty) alone, after which no terminator comes. 30114,
    // or 30115 when nothing came.
    ResultCode ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout, char terminator,
                          std::string_view prompt = {});

    // Whether the line that ReadString gave last was whole: ended by its terminator, or a prompt.
    bool LineEnded() const { return lineEnded_; }

    void Purge();
    void SetDtr(bool on);
    void SetRts(bool on);

  private:
    ResultCode Opened(ResultCode code, const SerialSettings& settings, std::unique_ptr<SerialDevice> device);
    bool Fill(std::uint32_t wait);

    SerialOpener* opener_;
    std::unique_ptr<SerialDevice> device_;
    std::uint32_t writeDelay_ = 0;
    std::uint32_t characterDelay_ = 0;
    std::array<char, 16384> received_{};
    std::size_t receivedAt_ = 0;
    std::size_t receivedEnd_ = 0;
    bool lineEnded_ = false;
};
