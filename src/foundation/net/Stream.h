// A connection to a server: whole buffers and lines out, octets and lines in, each with its time-outs. What
// moves the octets is left to the derived class; all waiting is done here, through the clock.
#pragma once
#include "foundation/Clock.h"
#include "foundation/net/SocketApi.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tcp {
inline constexpr int kSuccess = 0;
inline constexpr int kConnectTimedOut = -1;
inline constexpr int kTotalTimedOut = -2;
inline constexpr int kIdleTimedOut = -3;
inline constexpr int kNotConnected = -4;
inline constexpr int kBufferFull = -8;
inline constexpr int kClosedByPeer = -9;
inline constexpr int kAborted = -10;
}  // namespace tcp

// All operations give a result of `tcp::` or a Windows Sockets error, positive from Connect and the receiving
// ones, negated from Send. Times are in ms; Timer::kForever never expires. Used by one thread at a time.
class Stream {
  public:
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    virtual ~Stream() = default;

    virtual int Connect(const std::string& host, std::uint16_t port, std::uint32_t timeout) = 0;
    virtual bool IsConnected() const = 0;
    // What was received and not yet read is dropped.
    int Disconnect();

    // `idle`: the longest time in which no octet moves. What is sent when the time is over is sent too late.
    int Send(std::string_view octets, std::uint32_t total, std::uint32_t idle, std::size_t& sent);
    // What the connection takes at once; 0 also when that is nothing. A connection that is gone stays open
    // here, so that what it has brought can still be received.
    int SendSome(std::string_view octets, std::size_t& sent);
    int SendLine(std::string_view text, std::uint32_t total, std::uint32_t idle);
    // One read; what the line buffer still holds comes first.
    int Receive(char* buffer, std::size_t size, std::size_t& received);
    // As Receive, but waits for something to come: -2 when nothing has.
    int ReceiveWithin(char* buffer, std::size_t size, std::uint32_t timeout, std::size_t& received);
    // The next line without its terminator; -8 when it is too long. An octet that breaks a match of the
    // terminator begins no new one: "\r\r\n" ends no line.
    int ReceiveLine(std::string& line, std::uint32_t total, std::uint32_t idle);
    // Whether something to read has come within the time. At the end of the connection: false, at once.
    bool WaitForData(std::uint32_t timeout);

    void SetTerminator(std::string terminator) { terminator_ = std::move(terminator); }
    const std::string& Terminator() const { return terminator_; }
    // About how many octets a line may have before its reading is given up.
    void SetLongestLine(std::size_t octets) { longestLine_ = octets; }

    Clock& GetClock() const { return *clock_; }

  protected:
    explicit Stream(Clock& clock) : clock_(&clock) {}

    // Asks every millisecond; false when the time is over before the answer is true.
    template <class Ready>
    bool Await(std::uint32_t timeout, Ready ready) {
        const Timer timer(*clock_, timeout);
        while (!ready()) {
            if (timer.Expired()) return false;
            clock_->Sleep(kPollPause);
        }
        return true;
    }

  private:
    static constexpr std::uint32_t kPollPause = 1;

    // One attempt: the octets moved or a negated Windows Sockets error; Read gives 0 at the end.
    virtual int Write(const char* data, std::size_t size) = 0;
    virtual int Read(char* data, std::size_t size) = 0;
    virtual net::Readiness Look() = 0;
    virtual void Close() = 0;

    int ReceiveRaw(char* buffer, std::size_t size, std::size_t& received);

    Clock* clock_;
    std::string terminator_ = "\r\n";
    std::size_t longestLine_ = 0xFFFFFC00;
    std::string lines_;  // received and not yet read
};
