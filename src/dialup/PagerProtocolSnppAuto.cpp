// The class PagerProtocolSnpp over the paging engine.
#include "NeltCtrl.h"
#include "dialup/PagerMessageAuto.h"
#include "dialup/PagerProtocolSnpp.h"
#include "frame/ProtocolAuto.h"

namespace {

class PagerProtocolSnppAuto final : public ProtocolAuto<IPagerProtocolSnpp, CPagerProtocolSnpp> {
  public:
    AUTO_TEXT(Server, engine_.settings.server)
    AUTO_NUMBER(ServerPort, engine_.settings.serverPort)
    AUTO_NUMBER(ServerTimeout, engine_.settings.serverTimeout)
    AUTO_TEXT(ProviderPassword, engine_.settings.providerPassword)
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())

    STDMETHODIMP Send(VARIANT* pMessage) noexcept override {
        return Method([&] {
            if (pMessage == nullptr) return result::InvalidParameter;
            CPagerMessageX message;
            const ResultCode code = CopyFromAutomation(pMessage, message);
            return code == result::Success ? engine_.Send(message) : code;
        });
    }
};

}  // namespace

IUnknown* CreatePagerProtocolSnpp() { return new PagerProtocolSnppAuto; }
