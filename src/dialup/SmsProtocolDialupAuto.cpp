// The class SmsProtocolDialup over the dial-up channel.
#include "NeltCtrl.h"
#include "dialup/DialupProtocol.h"
#include "foundation/serial/PortWin.h"
#include "frame/DevicesAuto.h"
#include "frame/ProtocolAuto.h"
#include "sms/SmsMessageAuto.h"

namespace {

class SmsProtocolDialupAuto final
    : public DevicesAuto<ProviderAuto<ProtocolAuto<ISmsProtocolDialup, CDialupProtocol>>> {
  public:
    SmsProtocolDialupAuto() : DevicesAuto(MachineSerialOpener()) {}

    AUTO_TEXT(Device, engine_.settings.device)
    AUTO_NUMBER(DeviceSpeed, engine_.settings.deviceSpeed)
    AUTO_TEXT(DeviceInitString, engine_.settings.deviceInitString)
    AUTO_NUMBER(DeviceFlowControl, engine_.settings.flowControl)
    AUTO_NUMBER(ProviderType, engine_.settings.providerType)
    AUTO_TEXT_READ(ProviderDialString, engine_.settings.dialString)
    STDMETHODIMP put_ProviderDialString(BSTR newVal) noexcept override {
        return Storing([&] { engine_.SetDialString(AnsiOf(newVal)); });
    }
    AUTO_NUMBER(ProviderDialMode, engine_.settings.dialMode)
    AUTO_TEXT(ProviderInitString, engine_.settings.providerInitString)
    AUTO_TEXT(ProviderPassword, engine_.settings.providerPassword)
    AUTO_NUMBER(ProviderSpeed, engine_.settings.providerSpeed)
    AUTO_NUMBER(ProviderSettingsID, engine_.settings.providerSettings)
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())

    STDMETHODIMP Send(VARIANT* pMessage) noexcept override {
        return Method([&] {
            if (pMessage == nullptr) return result::InvalidParameter;
            CSmsMessageX message;
            const ResultCode code = CopyFromAutomation(pMessage, message);
            return code == result::Success ? engine_.Send(message) : code;
        });
    }
};

}  // namespace

IUnknown* CreateSmsProtocolDialup() { return new SmsProtocolDialupAuto; }
