// The class MmsProtocolMm1 over the MM1 channel.
#include "NeltCtrl.h"
#include "foundation/serial/PortWin.h"
#include "frame/DevicesAuto.h"
#include "frame/ProtocolAuto.h"
#include "mms/Mm1Protocol.h"
#include "mms/MmsMessageAuto.h"
#include "sms/ReceivedAuto.h"

namespace {

class MmsProtocolMm1Auto final
    : public ProviderAuto<DevicesAuto<ReceivedAuto<ProtocolAuto<IMmsProtocolMm1, CMm1Protocol>>>> {
  public:
    MmsProtocolMm1Auto() : ProviderAuto(MachineSerialOpener()) {}

    AUTO_TEXT(Device, engine_.settings.device)
    AUTO_TEXT(ProviderAPN, engine_.settings.accessPoint)
    AUTO_TEXT(ProviderAPNAccount, engine_.settings.account)
    AUTO_TEXT(ProviderAPNPassword, engine_.settings.password)
    AUTO_TEXT(ProviderWAPGateway, engine_.settings.gateway)
    AUTO_TEXT(ProviderMMSC, engine_.settings.mmsc)
    AUTO_NUMBER(ProviderMessageSizeLimit, engine_.settings.sizeLimit)
    AUTO_NUMBER(ProviderTimeout, engine_.settings.timeout)
    AUTO_NUMBER(MessageStorage, engine_.settings.messageStorage)
    AUTO_TEXT_READ(ProviderResponse, engine_.ProviderResponse())
    AUTO_TEXT_READ(MessageId, engine_.MessageId())
    AUTO_TEXT_READ(ProvidersFolder, CMm1Protocol::ProvidersFolder())

    STDMETHODIMP Connect() noexcept override {
        return Method([&] { return engine_.Connect(); });
    }
    STDMETHODIMP Disconnect() noexcept override {
        return Method([&] { return engine_.Disconnect(); });
    }
    STDMETHODIMP Send(VARIANT* pVal) noexcept override {
        return Method([&] {
            return SendMmsMessage(pVal, [this](CMmsMessage* message) { return engine_.Send(message); });
        });
    }
    STDMETHODIMP Retrieve(BSTR bstrContentLocation, VARIANT* pVal) noexcept override {
        return Output(pVal, [&](ComPointer<IDispatch>& object) {
            CMmsMessage message;
            const ResultCode code = engine_.Retrieve(AnsiOf(bstrContentLocation), message);
            if (!message.EncodedMessage.empty()) object = NewMmsMessage(std::move(message));
            return code;
        });
    }
    STDMETHODIMP EnterPin(BSTR bstrPinCode) noexcept override {
        return Method([&] { return engine_.EnterPin(AnsiOf(bstrPinCode)); });
    }
    STDMETHODIMP SendCommand(BSTR bstrCommand, LONG lTimeout, BSTR* pbstrResponse) noexcept override {
        return Output(pbstrResponse, [&](std::string& response) {
            return engine_.SendCommand(AnsiOf(bstrCommand), lTimeout, response);
        });
    }
    STDMETHODIMP CountReceivedMessages(LONG* pVal) noexcept override {
        return Output(pVal, [&](std::size_t& count) { return engine_.CountNotifications(count); });
    }

  private:
    ResultCode First(CSmsMessageX& message) override { return engine_.FirstNotification(message); }
};

}  // namespace

IUnknown* CreateMmsProtocolMm1() { return new MmsProtocolMm1Auto; }
