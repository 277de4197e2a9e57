// The class SmsProtocolSmpp over the session and its worker thread.
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"
#include "smpp/SmppProtocol.h"
#include "sms/SmsDeliveryStatusAuto.h"
#include "sms/SmsMessageAuto.h"

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

class SmsProtocolSmppAuto final : public ProtocolAuto<ISmsProtocolSmpp> {
  public:
    SmsProtocolSmppAuto() {
        smpp_.SetFailureHandler([this](std::int32_t code) { SetLastError(code); });
    }

    AUTO_TEXT(Server, smpp_.parameters.server)
    AUTO_NUMBER(ServerPort, smpp_.parameters.serverPort)
    AUTO_NUMBER(ServerTimeout, smpp_.parameters.serverTimeout)
    AUTO_NUMBER(ServerKeepAlive, smpp_.parameters.serverKeepAlive)
    AUTO_TEXT(SystemID, smpp_.parameters.systemId)
    AUTO_TEXT(SystemPassword, smpp_.parameters.systemPassword)
    AUTO_TEXT(SystemType, smpp_.parameters.systemType)
    AUTO_NUMBER(SystemMode, smpp_.parameters.systemMode)
    AUTO_NUMBER(SystemVersion, smpp_.parameters.systemVersion)
    AUTO_TEXT(SystemSourceAddress, smpp_.parameters.sourceAddress)
    AUTO_NUMBER(SystemSourceTON, smpp_.parameters.sourceTon)
    AUTO_NUMBER(SystemSourceNPI, smpp_.parameters.sourceNpi)
    AUTO_NUMBER(SystemDestinationTON, smpp_.parameters.destinationTon)
    AUTO_NUMBER(SystemDestinationNPI, smpp_.parameters.destinationNpi)
    AUTO_NUMBER(SystemThroughput, smpp_.parameters.throughput)
    AUTO_NUMBER(SystemCharSet, smpp_.parameters.charSet)
    AUTO_TEXT(AddressRange, smpp_.parameters.addressRange)
    AUTO_NUMBER(DeliveryReportFormat, smpp_.parameters.reportFormat)
    STDMETHODIMP get_AdvancedSettings(BSTR* pVal) noexcept override { return GiveAdvancedSettings(pVal); }
    STDMETHODIMP put_AdvancedSettings(BSTR newVal) noexcept override { return StoreAdvancedSettings(newVal); }
    STDMETHODIMP get_sysTLVRecordsTX(BSTR* pVal) noexcept override {
        return Give(pVal, smpp_.parameters.transmitTlvs.ToText());
    }
    STDMETHODIMP put_sysTLVRecordsTX(BSTR newVal) noexcept override {
        return StoreTlvs(smpp_.parameters.transmitTlvs, newVal);
    }
    STDMETHODIMP get_sysTLVRecordsRX(BSTR* pVal) noexcept override {
        return Give(pVal, smpp_.parameters.receiveTlvs.ToText());
    }
    STDMETHODIMP put_sysTLVRecordsRX(BSTR newVal) noexcept override {
        return StoreTlvs(smpp_.parameters.receiveTlvs, newVal);
    }
    STDMETHODIMP get_IsConnected(LONG* pVal) noexcept override {
        return Give(pVal, smpp_.IsConnected() ? -1 : 0);
    }

    STDMETHODIMP Clear() noexcept override {
        return Method([&] {
            smpp_.Clear();
            return result::Success;
        });
    }
    STDMETHODIMP Connect() noexcept override {
        return Method([&] { return smpp_.Connect(); });
    }
    STDMETHODIMP Disconnect() noexcept override {
        return Method([&] { return smpp_.Disconnect(); });
    }

    STDMETHODIMP Send(VARIANT* pMessage, BSTR* pVal) noexcept override {
        return Method([&] {
            if (pMessage == nullptr || pVal == nullptr) return result::InvalidParameter;
            *pVal = nullptr;
            CSmsMessageX message;
            if (CopyFromAutomation(pMessage, message) != result::Success) return result::InvalidSmsMessage;
            message.TlvRecords = smpp_.parameters.transmitTlvs;
            std::string references;
            const std::int32_t code = smpp_.Send(message, references);
            *pVal = NewBstr(references);
            return code;
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
            smpp_.parameters.transmitTlvs.AddOrReplace(std::move(record));
            return result::Success;
        });
    }

    STDMETHODIMP GetTLVValue(LONG lTag, VARIANT* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            ::VariantInit(pVal);
            if (lTag < 1 || lTag > 0xFFFF) return result::TlvInvalidTag;
            const CTLVRecord* record = smpp_.parameters.receiveTlvs.Find(static_cast<std::uint32_t>(lTag));
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
            const std::int32_t code = smpp_.QueryStatus(AnsiOf(bstrReference), bWait != 0, report);
            if (code == result::Success || code == result::SmppTimedOut) GiveDeliveryStatus(pVal, report);
            return code;
        });
    }

    STDMETHODIMP CountReceivedMessages(LONG* pVal) noexcept override {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            *pVal = static_cast<LONG>(smpp_.Received().Count());
            return result::Success;
        });
    }
    STDMETHODIMP GetFirstMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) { return smpp_.Received().First(message); });
    }
    STDMETHODIMP GetNextMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) {
            const std::int32_t code = smpp_.Received().Next(message);
            if (code == result::NoMoreMessages)
                smpp_.Received().RemoveRead();  // a walk that ended is done with them
            return code;
        });
    }
    STDMETHODIMP GetMessage(LONG lIndex, VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this, lIndex](CSmsMessageX& message) {
            const auto index = static_cast<std::size_t>(lIndex);
            const bool found = lIndex >= 0 && smpp_.Received().ByIndex(index, message) == result::Success;
            return found ? result::Success : result::InvalidReference;
        });
    }

    STDMETHODIMP ProviderLoadConfig(BSTR bstrConfigFile) noexcept override {
        return Method([&] { return smpp_.LoadConfig(AnsiOf(bstrConfigFile)); });
    }
    STDMETHODIMP ProviderSaveConfig(BSTR bstrConfigFile) noexcept override {
        return Method([&] { return smpp_.SaveConfig(AnsiOf(bstrConfigFile)); });
    }
    STDMETHODIMP Sleep(LONG lMilliseconds) noexcept override {
        return Method([&] {
            if (lMilliseconds > 0) ::Sleep(static_cast<DWORD>(lMilliseconds));
            return result::Success;
        });
    }
    STDMETHODIMP LoadReports(BSTR bstrFile) noexcept override {
        return Method([&] { return smpp_.Reports().Load(AnsiOf(bstrFile)); });
    }
    STDMETHODIMP SaveReports(BSTR bstrFile) noexcept override {
        return Method([&] { return smpp_.Reports().Save(AnsiOf(bstrFile)); });
    }

  protected:
    CVrmBase& Base() override { return smpp_; }

  private:
    template <class Read>
    HRESULT GiveMessage(VARIANT* pVal, Read read) noexcept {
        return Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsMessageX message;
            const std::int32_t code = read(message);
            if (code != result::Success) return code;
            smpp_.parameters.receiveTlvs = message.TlvRecords;
            GiveSmsMessage(pVal, message);
            return code;
        });
    }

    HRESULT StoreTlvs(CTLVRecords& records, BSTR text) noexcept {
        try {
            records.FromText(WideOf(text));
        } catch (...) {  // a setter has no result code
        }
        return S_OK;
    }

    CSmppProtocol smpp_;
};

}  // namespace

IUnknown* CreateSmsProtocolSmpp() { return new SmsProtocolSmppAuto; }
