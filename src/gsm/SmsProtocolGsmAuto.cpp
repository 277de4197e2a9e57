// The class SmsProtocolGsm over the modem engine.
#include "NeltCtrl.h"
#include "foundation/serial/PortWin.h"
#include "foundation/serial/TelephonyWin.h"
#include "gsm/GsmModem.h"
#include "sms/SmsChannelAuto.h"

namespace {

class SmsProtocolGsmAuto final : public SmsChannelAuto<ISmsProtocolGsm, CGsmModem> {
  public:
    SmsProtocolGsmAuto() : SmsChannelAuto(MachineSerialOpener()) {}

    AUTO_TEXT(Device, engine_.settings.device)
    AUTO_NUMBER(DeviceSpeed, engine_.settings.speed)
    AUTO_TEXT(DeviceInitString, engine_.settings.initString)
    AUTO_NUMBER(DeviceFlowControl, engine_.settings.flowControl)
    AUTO_NUMBER(MessageStorage, engine_.settings.messageStorage)
    AUTO_NUMBER(ReportsStorage, engine_.settings.reportsStorage)
    AUTO_TEXT(SMSC, engine_.settings.smsc)

    STDMETHODIMP GetDeviceCount(LONG* pVal) noexcept override {
        return Output(pVal, [](std::size_t& count) {
            count = TelephonyLines().size();
            return result::Success;
        });
    }
    STDMETHODIMP GetDevice(LONG lDevice, BSTR* pVal) noexcept override {
        return Output(pVal, [lDevice](std::optional<std::string>& name) {
            const std::vector<std::string> lines = TelephonyLines();
            if (lDevice < 0 || static_cast<std::size_t>(lDevice) >= lines.size()) {
                return result::TelephonyDeviceNotFound;
            }
            name = lines[static_cast<std::size_t>(lDevice)];
            return result::Success;
        });
    }

    STDMETHODIMP EnterPin(BSTR bstrPIN) noexcept override {
        return Method([&] { return engine_.EnterPin(AnsiOf(bstrPIN)); });
    }
    STDMETHODIMP SendCommand(BSTR bstrCommand, LONG lTimeout, BSTR* pbstrResponse) noexcept override {
        return Output(pbstrResponse, [&](std::string& response) {
            return engine_.SendCommand(AnsiOf(bstrCommand), lTimeout, response);
        });
    }
    STDMETHODIMP Receive(LONG* pVal) noexcept override {
        return Output(pVal, [&](std::size_t& count) {
            const ResultCode code = engine_.Receive();
            count = engine_.Received().Count();
            return code;
        });
    }
    STDMETHODIMP DeleteMessage(LONG lIndex) noexcept override {
        return Method([&] { return engine_.DeleteMessage(lIndex); });
    }
    STDMETHODIMP DeleteAllMessages(LONG bAll) noexcept override {
        return Method([&] { return engine_.DeleteAllMessages(bAll); });
    }
    STDMETHODIMP QueryStatus(BSTR bstrReference, VARIANT* pVal) noexcept override {
        return GiveStatus(pVal, [&](CSmsDeliveryReport& report) {
            return engine_.QueryStatus(AnsiOf(bstrReference), report);
        });
    }
};

}  // namespace

IUnknown* CreateSmsProtocolGsm() { return new SmsProtocolGsmAuto; }
