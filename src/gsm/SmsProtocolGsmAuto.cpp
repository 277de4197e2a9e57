// The class SmsProtocolGsm over the modem engine.
#include "NeltCtrl.h"
#include "foundation/PortWin.h"
#include "foundation/TelephonyWin.h"
#include "frame/AutomationAuto.h"
#include "gsm/GsmModem.h"
#include "sms/SmsDeliveryStatusAuto.h"
#include "sms/SmsMessageAuto.h"

namespace {

class SmsProtocolGsmAuto final : public ProtocolAuto<ISmsProtocolGsm> {
  public:
    AUTO_TEXT(Device, modem_.settings.device)
    AUTO_NUMBER(DeviceSpeed, modem_.settings.speed)
    AUTO_TEXT(DeviceInitString, modem_.settings.initString)
    AUTO_NUMBER(DeviceFlowControl, modem_.settings.flowControl)
    AUTO_NUMBER(MessageStorage, modem_.settings.messageStorage)
    AUTO_NUMBER(ReportsStorage, modem_.settings.reportsStorage)
    AUTO_TEXT(SMSC, modem_.settings.smsc)
    STDMETHODIMP get_AdvancedSettings(BSTR* pVal) noexcept override { return GiveAdvancedSettings(pVal); }
    STDMETHODIMP put_AdvancedSettings(BSTR newVal) noexcept override { return StoreAdvancedSettings(newVal); }

    STDMETHODIMP Clear() noexcept override {
        return Method([&] {
            modem_.Clear();
            return result::Success;
        });
    }

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
        return Method([&] { return modem_.EnterPin(AnsiOf(bstrPIN)); });
    }

    STDMETHODIMP SendCommand(BSTR bstrCommand, LONG lTimeout, BSTR* pbstrResponse) noexcept override {
        return Method([&] {
            if (pbstrResponse == nullptr) return result::InvalidParameter;
            *pbstrResponse = nullptr;
            std::string response;
            const std::int32_t code =
                modem_.SendCommand(AnsiOf(bstrCommand), static_cast<std::uint32_t>(lTimeout), response);
            *pbstrResponse = NewBstr(response);
            return code;
        });
    }

    STDMETHODIMP Send(VARIANT* pMessage, BSTR* pVal) noexcept override {
        return Method([&] {
            if (pMessage == nullptr || pVal == nullptr) return result::InvalidParameter;
            *pVal = nullptr;
            CSmsMessageX message;
            if (const std::int32_t code = CopyFromAutomation(pMessage, message); code != result::Success)
                return code;
            std::string references;
            const std::int32_t code = modem_.Send(message, references);
            *pVal = NewBstr(references);
            return code;
        });
    }

    STDMETHODIMP Receive(LONG* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = 0;
            const std::int32_t code = modem_.Receive();
            *pVal = static_cast<LONG>(modem_.Received().Count());
            return code;
        });
    }

    STDMETHODIMP GetFirstMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) { return modem_.Received().First(message); });
    }

    STDMETHODIMP GetNextMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) { return modem_.Received().Next(message); });
    }

    STDMETHODIMP GetMessage(LONG lIndex, VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this, lIndex](CSmsMessageX& message) {
            const auto index = static_cast<std::size_t>(lIndex);
            const bool found = lIndex >= 0 && modem_.Received().ByIndex(index, message) == result::Success;
            return found ? result::Success : result::InvalidReference;
        });
    }

    STDMETHODIMP DeleteMessage(LONG lIndex) noexcept override {
        return Method([&] { return modem_.DeleteMessage(lIndex); });
    }

    STDMETHODIMP DeleteAllMessages(LONG bAll) noexcept override {
        return Method([&] { return modem_.DeleteAllMessages(bAll != 0); });
    }

    STDMETHODIMP QueryStatus(BSTR bstrReference, VARIANT* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsDeliveryReport report;
            const std::int32_t code = modem_.QueryStatus(AnsiOf(bstrReference), report);
            if (code == result::Success) GiveDeliveryStatus(pVal, report);
            return code;
        });
    }

    STDMETHODIMP SaveReports(BSTR bstrFile) noexcept override {
        return Method([&] { return modem_.Reports().Save(AnsiOf(bstrFile)); });
    }

    STDMETHODIMP LoadReports(BSTR bstrFile) noexcept override {
        return Method([&] { return modem_.Reports().Load(AnsiOf(bstrFile)); });
    }

  protected:
    CVrmBase& Base() override { return modem_; }

  private:
    template <class Read>
    HRESULT GiveMessage(VARIANT* pVal, Read read) noexcept {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsMessageX message;
            const std::int32_t code = read(message);
            if (code == result::Success) GiveSmsMessage(pVal, message);
            return code;
        });
    }

    CGsmModem modem_{MachineSerialOpener()};
};

}  // namespace

IUnknown* CreateSmsProtocolGsm() { return new SmsProtocolGsmAuto; }
