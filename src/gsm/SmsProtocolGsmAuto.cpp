// The class SmsProtocolGsm over the modem engine.
#include "NeltCtrl.h"
#include "foundation/serial/PortWin.h"
#include "foundation/serial/TelephonyWin.h"
#include "gsm/GsmModem.h"
#include "sms/SmsChannelAuto.h"
#include "sms/SmsDeliveryStatusAuto.h"

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
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = static_cast<LONG>(TelephonyLines().size());
            return result::Success;
        });
    }

    STDMETHODIMP GetDevice(LONG lDevice, BSTR* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = nullptr;
            const std::vector<std::string> lines = TelephonyLines();
            if (lDevice < 0 || static_cast<std::size_t>(lDevice) >= lines.size()) {
                return result::TelephonyDeviceNotFound;
            }
            *pVal = NewBstr(lines[static_cast<std::size_t>(lDevice)]);
            return result::Success;
        });
    }

    STDMETHODIMP EnterPin(BSTR bstrPIN) noexcept override {
        return Method([&] { return engine_.EnterPin(AnsiOf(bstrPIN)); });
    }

    STDMETHODIMP SendCommand(BSTR bstrCommand, LONG lTimeout, BSTR* pbstrResponse) noexcept override {
        return Method([&] {
            if (pbstrResponse == nullptr) return result::InvalidParameter;
            *pbstrResponse = nullptr;
            std::string response;
            const ResultCode code =
                engine_.SendCommand(AnsiOf(bstrCommand), static_cast<std::uint32_t>(lTimeout), response);
            *pbstrResponse = NewBstr(response);
            return code;
        });
    }

    STDMETHODIMP Receive(LONG* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = 0;
            const ResultCode code = engine_.Receive();
            *pVal = static_cast<LONG>(engine_.Received().Count());
            return code;
        });
    }

    STDMETHODIMP DeleteMessage(LONG lIndex) noexcept override {
        return Method([&] { return engine_.DeleteMessage(lIndex); });
    }

    STDMETHODIMP DeleteAllMessages(LONG bAll) noexcept override {
        return Method([&] { return engine_.DeleteAllMessages(bAll != 0); });
    }

    STDMETHODIMP QueryStatus(BSTR bstrReference, VARIANT* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsDeliveryReport report;
            const ResultCode code = engine_.QueryStatus(AnsiOf(bstrReference), report);
            if (code == result::Success) GiveDeliveryStatus(pVal, report);
            return code;
        });
    }
};

}  // namespace

IUnknown* CreateSmsProtocolGsm() { return new SmsProtocolGsmAuto; }
