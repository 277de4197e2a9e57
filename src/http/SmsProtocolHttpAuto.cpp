// The class SmsProtocolHttp over the HTTP channel.
#include "NeltCtrl.h"
#include "frame/ProtocolAuto.h"
#include "http/HttpProtocol.h"
#include "sms/SmsMessageAuto.h"

namespace {

class SmsProtocolHttpAuto final : public ProviderAuto<ProtocolAuto<ISmsProtocolHttp, CHttpProtocol>> {
  public:
    AUTO_TEXT(ProviderHost, engine_.settings.host)
    AUTO_NUMBER(ProviderPort, engine_.settings.port)
    AUTO_TEXT(ProviderWebAccount, engine_.settings.webAccount)
    AUTO_TEXT(ProviderWebPassword, engine_.settings.webPassword)
    AUTO_FLAG(ProviderUseSSL, engine_.settings.useSsl)
    AUTO_TEXT(ProviderCharset, engine_.settings.charset)
    AUTO_TEXT(ProviderSuccessResponse, engine_.settings.successResponse)
    AUTO_TEXT(ProviderErrorResponse, engine_.settings.errorResponse)
    AUTO_TEXT(ProxyServer, engine_.settings.proxyServer)
    AUTO_NUMBER(ProxyPort, engine_.settings.proxyPort)
    AUTO_TEXT(ProxyAccount, engine_.settings.proxyAccount)
    AUTO_TEXT(ProxyPassword, engine_.settings.proxyPassword)
    AUTO_TEXT(URLText, engine_.settings.urlText)
    AUTO_TEXT(URLBinary, engine_.settings.urlBinary)
    AUTO_TEXT(URLUnicode, engine_.settings.urlUnicode)
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())

    STDMETHODIMP Send(VARIANT* pMessage) noexcept override {
        return Method([&] {
            if (pMessage == nullptr) return result::InvalidParameter;
            CSmsMessageX message;
            if (CopyFromAutomation(pMessage, message) != result::Success) return result::InvalidSmsMessage;
            return engine_.Send(message);
        });
    }
};

}  // namespace

IUnknown* CreateSmsProtocolHttp() { return new SmsProtocolHttpAuto; }
