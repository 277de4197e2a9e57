// A look-up of a host name in a thread of its own, since the platform's can take far longer than its caller
// wants to wait. One that is given up ends by itself.
#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct HostAddress {
    int error = 0;              // of Windows Sockets
    std::uint32_t address = 0;  // IPv4, in network order
    std::string text;           // dotted
};

class NameLookup {
  public:
    using Platform = std::function<HostAddress(const std::string& host)>;  // may wait

    // Dotted addresses are known at once.
    explicit NameLookup(const std::string& host, const Platform& platform);

    // Waits for the end, by the clock on the wall.
    bool EndsWithin(std::chrono::milliseconds time) const;
    // Only after the end.
    const HostAddress& Found() const;

    static HostAddress AskPlatform(const std::string& host);

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};
