// The class SmsProtocolGsm over the modem engine.
#include "NeltCtrl.h"
#include "foundation/serial/PortWin.h"
#include "frame/DevicesAuto.h"
#include "gsm/GsmModem.h"
#include "sms/SmsChannelAuto.h"

namespace {

class SmsProtocolGsmAuto final : public DevicesAuto<SmsChannelAuto<ISmsProtocolGsm, CGsmModem>> {
  public:
    SmsProtocolGsmAuto() : DevicesAuto(MachineSerialOpener()) {}

    AUTO_TEXT(Device, engine_.settings.device)
    AUTO_NUMBER(DeviceSpeed, engine_.settings.speed)
    AUTO_TEXT(DeviceInitString, engine_.settings.initString)
    AUTO_NUMBER(DeviceFlowControl, engine_.settings.flowControl)
    AUTO_NUMBER(MessageStorage, engine_.settings.messageStorage)
    AUTO_NUMBER(ReportsStorage, engine_.settings.reportsStorage)
    AUTO_TEXT(SMSC, engine_.settings.smsc)

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
