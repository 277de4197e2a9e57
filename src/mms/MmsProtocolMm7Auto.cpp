// The class MmsProtocolMm7 over the MM7 channel.
#include "NeltCtrl.h"
#include "frame/ProtocolAuto.h"
#include "mms/Mm7Protocol.h"
#include "mms/MmsMessageAuto.h"

namespace {

class MmsProtocolMm7Auto final : public ProviderAuto<ProtocolAuto<IMmsProtocolMm7, CMm7Protocol>> {
  public:
    AUTO_TEXT(ProviderHost, engine_.settings.host)
    AUTO_NUMBER(ProviderPort, engine_.settings.port)
    AUTO_TEXT(ProviderPath, engine_.settings.path)
    AUTO_FLAG(ProviderUseSSL, engine_.settings.useSsl)
    AUTO_TEXT(ProviderWebAccount, engine_.settings.webAccount)
    AUTO_TEXT(ProviderWebPassword, engine_.settings.webPassword)
    AUTO_TEXT(ProviderVASPID, engine_.settings.submission.vaspId)
    AUTO_TEXT(ProviderVASID, engine_.settings.submission.vasId)
    AUTO_TEXT(ProviderServiceCode, engine_.settings.submission.serviceCode)
    AUTO_NUMBER(ProviderMM7Version, engine_.settings.submission.version)
    AUTO_NUMBER(ProviderMM7Schema, engine_.settings.submission.schema)
    AUTO_NUMBER(ProviderMM7Variation, engine_.settings.submission.variation)
    AUTO_NUMBER(ProviderMessageSizeLimit, engine_.settings.sizeLimit)
    AUTO_NUMBER(ProviderTimeout, engine_.settings.timeout)
    AUTO_TEXT(ProxyServer, engine_.settings.proxyServer)
    AUTO_NUMBER(ProxyPort, engine_.settings.proxyPort)
    AUTO_TEXT(ProxyAccount, engine_.settings.proxyAccount)
    AUTO_TEXT(ProxyPassword, engine_.settings.proxyPassword)
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())
    AUTO_TEXT_READ(MessageId, engine_.MessageId())

    STDMETHODIMP Send(VARIANT* pVal) noexcept override {
        return Method([&] {
            return SendMmsMessage(pVal, [this](CMmsMessage* message) { return engine_.Send(message); });
        });
    }
};

}  // namespace

IUnknown* CreateMmsProtocolMm7() { return new MmsProtocolMm7Auto; }
