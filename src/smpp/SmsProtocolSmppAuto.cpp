// The class SmsProtocolSmpp over the session and its worker thread.
#include "NeltCtrl.h"
#include "smpp/SmppProtocol.h"
#include "sms/SmsChannelAuto.h"
#include "sms/SmsDeliveryStatusAuto.h"

namespace {

// The integer in a VARIANT, of any width, or a boolean as 0 or 1.
bool IntegerIn(const VARIANT& value, std::uint32_t& number) {
    switch (value.vt) {
        case VT_BOOL:
            number = value.boolVal != VARIANT_FALSE ? 1 : 0;
            return true;
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R8: {
            VARIANT wide;
            ::VariantInit(&wide);
            if (FAILED(::VariantChangeType(&wide, const_cast<VARIANT*>(&value), 0, VT_I8))) return false;
            number = static_cast<std::uint32_t>(wide.llVal);
            return true;
        }
        default:
            return false;
    }
}

// Takes a value into a record; false for a VARIANT that is neither number nor text.
bool TakeValue(const VARIANT& value, CTLVRecord& record) {
    const VARIANT* inner = &value;
    for (int depth = 0; inner->vt == (VT_VARIANT | VT_BYREF) && inner->pvarVal != nullptr && depth < 8;
         ++depth) {
        inner = inner->pvarVal;
    }
    VARIANT plain;
    ::VariantInit(&plain);
    if (FAILED(::VariantCopyInd(&plain, const_cast<VARIANT*>(inner)))) return false;
    std::uint32_t number = 0;
    bool taken = true;
    if (IntegerIn(plain, number)) {
        record.SetInteger(number);
    } else if (plain.vt == VT_BSTR) {
        record.text = WideOf(plain.bstrVal);
    } else {
        taken = false;
    }
    ::VariantClear(&plain);
    return taken;
}

void GiveValue(const CTLVRecord& record, VARIANT* out) {
    ::VariantInit(out);
    switch (record.type) {
        case TLVType::kByte:
            out->vt = VT_UI1;
            out->bVal = record.byteValue;
            break;
        case TLVType::kWord:
            out->vt = VT_I2;
            out->iVal = static_cast<SHORT>(record.wordValue);
            break;
        case TLVType::kLong:
            out->vt = VT_I4;
            out->lVal = static_cast<LONG>(record.longValue);
            break;
        default:
            out->vt = VT_BSTR;
            out->bstrVal = NewBstr(record.text);
            break;
    }
}

class SmsProtocolSmppAuto final : public SmsChannelAuto<ISmsProtocolSmpp, CSmppProtocol> {
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
    STDMETHODIMP get_sysTLVRecordsTX(BSTR* pVal) noexcept override {
        return Give(pVal, engine_.settings.transmitTlvs.ToText());
    }
    STDMETHODIMP put_sysTLVRecordsTX(BSTR newVal) noexcept override {
        return StoreTlvs(engine_.settings.transmitTlvs, newVal);
    }
    STDMETHODIMP get_sysTLVRecordsRX(BSTR* pVal) noexcept override {
        return Give(pVal, engine_.settings.receiveTlvs.ToText());
    }
    STDMETHODIMP put_sysTLVRecordsRX(BSTR newVal) noexcept override {
        return StoreTlvs(engine_.settings.receiveTlvs, newVal);
    }
    STDMETHODIMP get_IsConnected(LONG* pVal) noexcept override {
        return Give(pVal, engine_.IsConnected() ? -1 : 0);
    }

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
            CTLVRecord record;
            record.tag = static_cast<std::uint32_t>(lTag);
            record.type = static_cast<TLVType>(lType);
            if (!TakeValue(vtValue, record)) return result::InvalidParameter;
            engine_.settings.transmitTlvs.AddOrReplace(std::move(record));
            return result::Success;
        });
    }

    STDMETHODIMP GetTLVValue(LONG lTag, VARIANT* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            ::VariantInit(pVal);
            if (lTag < 1 || lTag > 0xFFFF) return result::TlvInvalidTag;
            const CTLVRecord* record = engine_.settings.receiveTlvs.Find(static_cast<std::uint32_t>(lTag));
            if (record == nullptr) return result::TlvNotFound;
            GiveValue(*record, pVal);
            return result::Success;
        });
    }

    STDMETHODIMP QueryStatus(BSTR bstrReference, LONG bWait, VARIANT* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsDeliveryReport report;
            const ResultCode code = engine_.QueryStatus(AnsiOf(bstrReference), bWait != 0, report);
            if (code == result::Success || code == result::SmppTimedOut) GiveDeliveryStatus(pVal, report);
            return code;
        });
    }

    STDMETHODIMP CountReceivedMessages(LONG* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = static_cast<LONG>(engine_.Received().Count());
            return result::Success;
        });
    }
    STDMETHODIMP ProviderLoadConfig(BSTR bstrConfigFile) noexcept override {
        return Method([&] { return engine_.LoadConfig(AnsiOf(bstrConfigFile)); });
    }
    STDMETHODIMP ProviderSaveConfig(BSTR bstrConfigFile) noexcept override {
        return Method([&] { return engine_.SaveConfig(AnsiOf(bstrConfigFile)); });
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
    void WalkEnded() override { engine_.Received().RemoveRead(); }  // the caller has seen them all

    HRESULT StoreTlvs(CTLVRecords& records, BSTR text) noexcept {
        try {
            records.FromText(WideOf(text));
        } catch (...) {  // a setter has no result code
        }
        return S_OK;
    }
};

}  // namespace

IUnknown* CreateSmsProtocolSmpp() { return new SmsProtocolSmppAuto; }
