// The class SmsProtocolSmpp over the session and its worker thread.
#include "NeltCtrl.h"
#include "smpp/SmppProtocol.h"
#include "sms/SmsChannelAuto.h"

// A list of optional parameters as a property is its text form.
static BSTR NewBstr(const CTLVRecords& records) { return NewBstr(records.ToText()); }
static void Take(CTLVRecords& records, BSTR text) { records.FromText(WideOf(text)); }

namespace {

// Takes a value into a record; false for a VARIANT that is neither number nor text.
bool TakeValue(const VARIANT& found, CTLVRecord& record) {
    if (const auto number = IntegerIn(found)) {
        record.SetInteger(*number);
    } else if (found.vt == VT_BSTR) {
        record.text = WideOf(found.bstrVal);
    } else {
        return false;
    }
    return true;
}

VARIANT ValueOf(const CTLVRecord& record) {
    VARIANT value{};
    switch (record.type) {
        case TLVType::kByte:
            value.vt = VT_UI1;
            value.bVal = record.byteValue;
            break;
        case TLVType::kWord:
            value.vt = VT_I2;
            value.iVal = static_cast<SHORT>(record.wordValue);
            break;
        case TLVType::kLong:
            value.vt = VT_I4;
            value.lVal = static_cast<LONG>(record.longValue);
            break;
        default:
            value.vt = VT_BSTR;
            value.bstrVal = NewBstr(record.text);
            break;
    }
    return value;
}

class SmsProtocolSmppAuto final : public ProviderAuto<SmsChannelAuto<ISmsProtocolSmpp, CSmppProtocol>> {
  public:
    SmsProtocolSmppAuto() {
        engine_.SetFailureHandler([this](ResultCode code) { SetLastError(code); });
    }

    AUTO_TEXT(Server, engine_.settings.server)
    AUTO_NUMBER(ServerPort, engine_.settings.serverPort)
    AUTO_NUMBER(ServerTimeout, engine_.settings.serverTimeout)
    AUTO_NUMBER(ServerKeepAlive, engine_.settings.serverKeepAlive)
    AUTO_TEXT(SystemID, engine_.settings.systemId)
    AUTO_TEXT(SystemPassword, engine_.settings.systemPassword)
    AUTO_TEXT(SystemType, engine_.settings.systemType)
    AUTO_NUMBER(SystemMode, engine_.settings.systemMode)
    AUTO_NUMBER(SystemVersion, engine_.settings.systemVersion)
    AUTO_TEXT(SystemSourceAddress, engine_.settings.sourceAddress)
    AUTO_NUMBER(SystemSourceTON, engine_.settings.sourceTon)
    AUTO_NUMBER(SystemSourceNPI, engine_.settings.sourceNpi)
    AUTO_NUMBER(SystemDestinationTON, engine_.settings.destinationTon)
    AUTO_NUMBER(SystemDestinationNPI, engine_.settings.destinationNpi)
    AUTO_NUMBER(SystemThroughput, engine_.settings.throughput)
    AUTO_NUMBER(SystemCharSet, engine_.settings.charSet)
    AUTO_TEXT(AddressRange, engine_.settings.addressRange)
    AUTO_NUMBER(DeliveryReportFormat, engine_.settings.reportFormat)
    AUTO_TEXT(sysTLVRecordsTX, engine_.settings.transmitTlvs)
    AUTO_TEXT(sysTLVRecordsRX, engine_.settings.receiveTlvs)
    AUTO_FLAG_READ(IsConnected, engine_.IsConnected())

    STDMETHODIMP Connect() noexcept override {
        return Method([&] { return engine_.Connect(); });
    }
    STDMETHODIMP Disconnect() noexcept override {
        return Method([&] {
            engine_.Disconnect();
            return result::Success;
        });
    }
    STDMETHODIMP SetTLVValue(LONG lType, LONG lTag, VARIANT vtValue) noexcept override {
        return Method([&] {
            if (lType < 1 || lType > 6) return result::TlvInvalidType;
            if (lTag < 1 || lTag > 0xFFFF) return result::TlvInvalidTag;
            const VARIANT value = ValueIn(&vtValue);
            if (value.vt == VT_EMPTY || value.vt == VT_NULL) return result::Success;  // changes nothing
            CTLVRecord record;
            record.tag = static_cast<std::uint32_t>(lTag);
            record.type = static_cast<TLVType>(lType);
            if (!TakeValue(value, record)) return result::InvalidParameter;
            engine_.settings.transmitTlvs.AddOrReplace(std::move(record));
            return result::Success;
        });
    }
    STDMETHODIMP GetTLVValue(LONG lTag, VARIANT* pVal) noexcept override {
        return Output(pVal, [&](VariantOwner& value) {
            if (lTag < 1 || lTag > 0xFFFF) return result::TlvInvalidTag;
            const CTLVRecord* record = engine_.settings.receiveTlvs.Find(static_cast<std::uint32_t>(lTag));
            if (record == nullptr) return result::TlvNotFound;
            *value.Receive() = ValueOf(*record);
            return result::Success;
        });
    }
    STDMETHODIMP QueryStatus(BSTR bstrReference, LONG bWait, VARIANT* pVal) noexcept override {
        return GiveStatus(pVal, [&](CSmsDeliveryReport& report) {
            return engine_.QueryStatus(AnsiOf(bstrReference), bWait != 0, report);
        });
    }
    STDMETHODIMP CountReceivedMessages(LONG* pVal) noexcept override {
        return Output(pVal, [&](std::size_t& count) {
            count = engine_.Received().Count();
            return result::Success;
        });
    }
    STDMETHODIMP Sleep(LONG lMilliseconds) noexcept override {
        return Method([&] {
            if (lMilliseconds > 0) ::Sleep(static_cast<DWORD>(lMilliseconds));
            return result::Success;
        });
    }

  private:
    ResultCode Prepare(VARIANT* from, CSmsMessageX& message) override {
        if (CopyFromAutomation(from, message) != result::Success) return result::InvalidSmsMessage;
        message.TlvRecords = engine_.settings.transmitTlvs;
        return result::Success;
    }
    void Giving(const CSmsMessageX& message) override { engine_.settings.receiveTlvs = message.TlvRecords; }
    std::string CompletedTimeText(std::int32_t seconds) override { return UtcTimeText(seconds); }
    void WalkEnded() override { engine_.Received().RemoveRead(); }  // the caller has seen them all
};

}  // namespace

IUnknown* CreateSmsProtocolSmpp() { return new SmsProtocolSmppAuto; }
