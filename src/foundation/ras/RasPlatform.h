// What a dial-up connection needs of the platform: the phonebook, the connection, and the routes of the
// machine, in portable types. Tests put a scripted one in its place.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ras {

// Codes of the platform that are told apart; every other number is passed on as it is.
inline constexpr std::uint32_t kOk = 0;
inline constexpr std::uint32_t kBufferOverflow = 111;      // the adapters need more room
inline constexpr std::uint32_t kInsufficientBuffer = 122;  // the routes need more room
inline constexpr std::uint32_t kFunctionMissing = 127;

inline constexpr std::uint32_t kConnected = 0x2000;  // state of a connection

// Of a phonebook entry.
inline constexpr std::uint32_t kModemLights = 0x100;  // option
inline constexpr std::uint32_t kIpOnly = 4;           // network protocols
inline constexpr std::uint32_t kPpp = 1;              // framing

// The longest texts, in characters.
inline constexpr std::size_t kEntryName = 256;
inline constexpr std::size_t kUserName = 256;
inline constexpr std::size_t kPassword = 256;
inline constexpr std::size_t kDeviceName = 128;

// A connection of the platform; 0 = none.
using Handle = std::uintptr_t;

struct EntryProperties {
    std::string device, deviceType, phoneNumber;
    std::uint32_t options = 0, protocols = 0, framing = 0;
};

struct DialParameters {
    std::string entry, phoneNumber, callbackNumber, user, password, domain;
    std::uint32_t subEntry = 0;
};

struct Adapter {
    std::string description;
    std::uint32_t index = 0;  // of its interface
    std::string address;      // the first, dotted
};

// A row of the route table; addresses are in the order of the network.
struct Route {
    std::uint32_t destination = 0, mask = 0, policy = 0, nextHop = 0, interfaceIndex = 0;
    std::uint32_t type = 0, protocol = 0, age = 0, nextHopSystem = 0;
    std::uint32_t metric1 = 0, metric2 = 0, metric3 = 0, metric4 = 0, metric5 = 0;
};

}  // namespace ras

// Every operation but Load and ToAddress gives 0 or a code of the platform. All but those two and the two
// that write an entry are made after Load only.
class RasPlatform {
  public:
    RasPlatform() = default;
    RasPlatform(const RasPlatform&) = delete;
    RasPlatform& operator=(const RasPlatform&) = delete;
    virtual ~RasPlatform() = default;

    // Whether all functions are there.
    virtual bool Load() = 0;

    // The default phonebook. Writing keeps the password there.
    virtual std::uint32_t SetEntryProperties(const std::string& entry, const ras::EntryProperties& what) = 0;
    virtual std::uint32_t SetDialParameters(const ras::DialParameters& parameters) = 0;
    // Completes what the phonebook knows of `parameters.entry`.
    virtual std::uint32_t GetDialParameters(ras::DialParameters& parameters) = 0;

    // Returns when the connection is up or has failed; a failed one may have a handle too.
    virtual std::uint32_t Dial(const ras::DialParameters& parameters, ras::Handle& connection) = 0;
    virtual std::uint32_t GetState(ras::Handle connection, std::uint32_t& state) = 0;
    virtual std::uint32_t HangUp(ras::Handle connection) = 0;

    // Lists that must fit into a buffer of `size` octets; the size that is needed comes back with the code
    // that says that they do not.
    virtual std::uint32_t GetAdapters(std::uint32_t& size, std::vector<ras::Adapter>& adapters) = 0;
    virtual std::uint32_t GetRoutes(std::uint32_t& size, std::vector<ras::Route>& routes) = 0;
    virtual std::uint32_t CreateRoute(const ras::Route& route) = 0;

    // A dotted address in the order of the network; all ones for what is none.
    virtual std::uint32_t ToAddress(const std::string& text) = 0;
};

// The platform's own.
std::unique_ptr<RasPlatform> NewRasPlatform();
