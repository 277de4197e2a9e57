// A packet-data connection that the platform's Remote Access Service dials over a modem, and the route of one
// server through it.
#pragma once
#include "foundation/KorBase.h"
#include "foundation/ResultCode.h"
#include "foundation/ras/RasPlatform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// What a phonebook entry is made of.
struct RasEntry {
    std::string name;
    std::string device;  // the modem, as the platform names it
    std::string user, password;
    std::uint32_t contextId = 0;  // of the modem's packet-data context; 0 = the modem's own choice
};

// Codes of the platform are passed on unchanged; -1 is what is asked for before Load.
class CKorRas final : public CKorBase {
  public:
    explicit CKorRas(Clock& clock = SystemClock(), std::unique_ptr<RasPlatform> platform = NewRasPlatform());
    // Leaves a connection as it is.
    ~CKorRas() override = default;

    // Finds the platform's functions; 0 or 22026.
    ResultCode Load();
    bool IsLoaded() const { return isLoaded_; }

    // What Dial proves itself with, instead of what the phonebook keeps.
    void SetCredentials(std::string user, std::string password);

    // Writes an entry of the default phonebook, with its password; 0 or 33711.
    ResultCode CreateEntry(const RasEntry& entry);

    // Connects an entry. A connection that an earlier call left is hung up first. `timeout`: ms for that and
    // for the link to come up; 0 = not waited for. 0, -1, 31678, or a code of the platform.
    ResultCode Dial(const std::string& entry, std::uint32_t timeout);

    // 0, also without a connection; -1 or a code of the platform.
    ResultCode GetStatus(bool& connected);
    // Whether a connection is held, up or not.
    bool IsConnected() const { return connection_ != 0; }

    // Waits up to 10 s until the connection is gone; 0 or -1.
    ResultCode HangUp();

    // Sends what is for `host`, a dotted address, through the last adapter whose description holds "PPP" or
    // `adapterText`. 0, 22026, or a code of the platform.
    ResultCode AddHostRoute(std::string_view host, std::string_view adapterText);

  private:
    ResultCode AwaitLink(const Timer& timer);
    ras::Adapter FindAdapter(std::string_view adapterText);
    std::uint32_t LargestMetric();

    std::unique_ptr<RasPlatform> platform_;
    bool isLoaded_ = false;
    ras::Handle connection_ = 0;
    std::string user_, password_;
};
