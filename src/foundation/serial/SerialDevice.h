// One open line to a modem, octets in and out. The edge implements it over a COM port or a telephony line;
// tests over a scripted modem in virtual time.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

// Line settings; 0 keeps the port's default everywhere.
struct SerialSettings {
    std::string device;                // "COM3", or the name of a telephony line
    std::uint32_t speed = 0;           // bits per second
    std::uint32_t parity = 0;          // 1 none, 2 odd, 3 even, 4 mark, 5 space
    std::uint8_t dataBits = 0;         //
    std::uint32_t stopBits = 0;        // 1 one, 2 two, 15 one and a half
    std::uint32_t dtrControl = 0;      // 1 off, 2 handshake
    std::uint32_t rtsControl = 0;      // 1 off, 2 handshake
    std::uint32_t ctsFlow = 0;         // 1 off, 2 on
    std::uint32_t dsrFlow = 0;         // 1 off, 2 on
    std::uint32_t xonXoff = 0;         // 1 off, 2 on
    std::uint32_t writeDelay = 0;      // ms before each text
    std::uint32_t characterDelay = 0;  // ms after each octet
};

class SerialDevice {
  public:
    virtual ~SerialDevice() = default;

    // Writes all octets; false when the line failed or did not take them within `limit` ms.
    virtual bool Write(std::span<const char> octets, std::uint32_t limit) = 0;

    // Reads what is there, waiting up to `wait` ms for a first octet; 0 when none came, -1 when the line
    // failed.
    virtual int Read(std::span<char> buffer, std::uint32_t wait) = 0;

    virtual void Purge() = 0;
    virtual void SetDtr(bool on) = 0;
    virtual void SetRts(bool on) = 0;
};

// Opens devices; the seam between the dialogue and the machine.
class SerialOpener {
  public:
    virtual ~SerialOpener() = default;
    // `systemError` receives the system's own number when the port cannot be opened (30104).
    virtual ResultCode OpenPort(const SerialSettings& settings, std::unique_ptr<SerialDevice>& device,
                                std::uint32_t& systemError) = 0;
    virtual ResultCode OpenTelephony(const SerialSettings& settings,
                                     std::unique_ptr<SerialDevice>& device) = 0;
};
