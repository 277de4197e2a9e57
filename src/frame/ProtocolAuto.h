// What protocols have in common. An interface takes the properties that it declares; the engine hands file
// names on to the transports that it owns.
#pragma once
#include "frame/EngineAuto.h"

template <class Interface, class Engine>
class ProtocolAuto : public EngineAuto<Interface, Engine> {
  public:
    using EngineAuto<Interface, Engine>::EngineAuto;

    virtual STDMETHODIMP get_LogFile(BSTR* pVal) noexcept {
        return GiveResult(pVal, [this] { return engine_.LogFile(); });
    }
    virtual STDMETHODIMP put_LogFile(BSTR newVal) noexcept {
        return Storing([&] { engine_.SetLogFile(AnsiOf(newVal)); });
    }
    virtual STDMETHODIMP get_ActivityFile(BSTR* pVal) noexcept {
        return GiveResult(pVal, [this] { return engine_.ActivityFile(); });
    }
    virtual STDMETHODIMP put_ActivityFile(BSTR newVal) noexcept {
        return Storing([&] { engine_.SetActivityFile(AnsiOf(newVal)); });
    }
    virtual STDMETHODIMP get_AdvancedSettings(BSTR* pVal) noexcept {
        return GiveResult(pVal, [this] { return engine_.AdvancedSettings(); });
    }
    virtual STDMETHODIMP put_AdvancedSettings(BSTR newVal) noexcept {
        return Storing([&] { engine_.SetAdvancedSettings(AnsiOf(newVal)); });
    }

  protected:
    using EngineAuto<Interface, Engine>::engine_;
};

// A protocol whose engine keeps its settings in provider files.
template <class Protocol>
class ProviderAuto : public Protocol {
  public:
    using Protocol::Protocol;

    STDMETHODIMP ProviderLoadConfig(BSTR bstrConfigFile) noexcept override {
        return this->Method([&] { return this->engine_.LoadConfig(AnsiOf(bstrConfigFile)); });
    }
    STDMETHODIMP ProviderSaveConfig(BSTR bstrConfigFile) noexcept override {
        return this->Method([&] { return this->engine_.SaveConfig(AnsiOf(bstrConfigFile)); });
    }
};
