// The Remote Access Service and the route table of Windows.
#pragma once
#include "foundation/ras/RasPlatform.h"

#include <winsock2.h>

// which the others go behind
#include <iphlpapi.h>
#include <memory>
#include <ras.h>
#include <type_traits>

// The functions that are used, looked up by name at run time. A test hands in a table of its own.
struct RasApi {
    decltype(&::GetAdaptersInfo) getAdaptersInfo = nullptr;
    decltype(&::CreateIpForwardEntry) createIpForwardEntry = nullptr;
    decltype(&::GetIpForwardTable) getIpForwardTable = nullptr;

    decltype(&::RasGetEntryDialParamsA) getEntryDialParams = nullptr;
    decltype(&::RasDialA) dial = nullptr;
    decltype(&::RasHangUpA) hangUp = nullptr;
    decltype(&::RasGetConnectStatusA) getConnectStatus = nullptr;
    decltype(&::RasEnumDevicesA) enumDevices = nullptr;
    decltype(&::RasEnumEntriesA) enumEntries = nullptr;
    decltype(&::RasEnumConnectionsA) enumConnections = nullptr;
    FARPROC getLinkStatistics = nullptr;

    // Not among those that Complete asks for.
    decltype(&::RasSetEntryPropertiesA) setEntryProperties = nullptr;
    decltype(&::RasSetEntryDialParamsA) setEntryDialParams = nullptr;

    bool Complete() const;
};

// The functions of the system's libraries, which are freed with it; null for those that they lack.
class SystemRas {
  public:
    SystemRas();

    const RasApi& Api() const { return api_; }

  private:
    struct Free {
        void operator()(HMODULE library) const { ::FreeLibrary(library); }
    };
    using Library = std::unique_ptr<std::remove_pointer_t<HMODULE>, Free>;

    Library ipSupport_, ras_;
    RasApi api_;
};

class RasPlatformWin final : public RasPlatform {
  public:
    // The system's functions, when they are first asked for.
    RasPlatformWin() = default;
    // The table must outlive it.
    explicit RasPlatformWin(const RasApi& api) : api_(&api) {}

    bool Load() override { return Api().Complete(); }
    std::uint32_t SetEntryProperties(const std::string& entry, const ras::EntryProperties& what) override;
    std::uint32_t SetDialParameters(const ras::DialParameters& parameters) override;
    std::uint32_t GetDialParameters(ras::DialParameters& parameters) override;
    std::uint32_t Dial(const ras::DialParameters& parameters, ras::Handle& connection) override;
    std::uint32_t GetState(ras::Handle connection, std::uint32_t& state) override;
    std::uint32_t HangUp(ras::Handle connection) override;
    std::uint32_t GetAdapters(std::uint32_t& size, std::vector<ras::Adapter>& adapters) override;
    std::uint32_t GetRoutes(std::uint32_t& size, std::vector<ras::Route>& routes) override;
    std::uint32_t CreateRoute(const ras::Route& route) override;
    std::uint32_t ToAddress(const std::string& text) override;

  private:
    const RasApi& Api();

    std::unique_ptr<SystemRas> system_;
    const RasApi* api_ = nullptr;
};
