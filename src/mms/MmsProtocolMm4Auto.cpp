// The class MmsProtocolMm4 over the MM4 channel.
#include "NeltCtrl.h"
#include "frame/ProtocolAuto.h"
#include "mms/MmsMessageAuto.h"
#include "mms/MmsProtocolMm4.h"

namespace {

class MmsProtocolMm4Auto final : public ProviderAuto<ProtocolAuto<IMmsProtocolMm4, CMmsProtocolMm4>> {
  public:
    AUTO_TEXT(ProviderHost, engine_.settings.host)
    AUTO_NUMBER(ProviderPort, engine_.settings.port)
    AUTO_TEXT(ProviderAccount, engine_.settings.account)
    AUTO_TEXT(ProviderPassword, engine_.settings.password)
    AUTO_TEXT(ProviderDomain, engine_.settings.domain)
    AUTO_NUMBER(ProviderMM4Format, engine_.settings.format)
    AUTO_NUMBER(ProviderMM4Version, engine_.settings.version)
    AUTO_NUMBER_READ(ProviderMessageSizeLimit, engine_.MessageSizeLimit())
    STDMETHODIMP put_ProviderMessageSizeLimit(LONG newVal) noexcept override {
        return Storing([&] { engine_.SetMessageSizeLimit(newVal); });
    }
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())

    STDMETHODIMP Send(VARIANT* pVal) noexcept override {
        return Method([&] {
            return SendMmsMessage(pVal, [this](CMmsMessage* message) { return engine_.Send(message); });
        });
    }
};

}  // namespace

IUnknown* CreateMmsProtocolMm4() { return new MmsProtocolMm4Auto; }
