// The few operations of the machine's sockets that the TCP client is made of; none of them waits, but for the
// look-up of a name (NameLookup gives it a thread). Error numbers are those of Windows Sockets on every
// platform.
#pragma once
#include <cstdint>
#include <string>

namespace net {

using Handle = std::intptr_t;
inline constexpr Handle kInvalid = -1;
inline constexpr int kWouldBlock = 10035;
inline constexpr int kAborted = 10053;
inline constexpr int kReset = 10054;

int Start();  // of the socket library; 0 or an error
void Stop();

Handle Create();
void Close(Handle socket);

// The first IPv4 address of a name, in network order, and as text; 0 or an error.
int Resolve(const std::string& host, std::uint32_t& address, std::string& text);

// A connect that is under way.
class Attempt {
  public:
    explicit Attempt(Handle socket);
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;
    ~Attempt();

    // False when the machine has no room for what the waiting needs.
    bool IsReady() const { return event_ != 0; }
    // Starts it without waiting; 0, kWouldBlock or an error.
    int Begin(std::uint32_t address, std::uint16_t port);
    // True when it has come to an end, whatever its outcome.
    bool HasEnded() const;

  private:
    Handle socket_;
    std::intptr_t event_;
};

// Octets moved, or the negated error.
int Send(Handle socket, const char* data, std::size_t size);
int Receive(Handle socket, char* data, std::size_t size);

// What a read would find; leaves it there.
enum class Readiness { kNothing, kData, kEnded };
Readiness Look(Handle socket);

// Lets one thread sleep on a socket while others can wake it: the sleep of a worker thread, not a time-out.
class Waiter {
  public:
    Waiter();
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;
    ~Waiter();

    // Returns when the socket has something to read (or to report), when it was woken, or when the time is
    // over. A read that found nothing goes before each wait.
    void Wait(Handle socket, std::uint32_t milliseconds);
    void Wake();
    // The next socket is another, whatever its number.
    void Forget() { watched_ = kInvalid; }

  private:
    [[maybe_unused]] Handle watched_ = kInvalid;
    std::intptr_t first_ = 0;
    [[maybe_unused]] std::intptr_t second_ = 0;
};

}  // namespace net
