#include "sms/SmsMessageAuto.h"

#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsMessageAuto final : public Automation<ISmsMessage> {
  public:
    STDMETHODIMP Clear() noexcept override {
        record_.Clear();
        return S_OK;
    }
    AUTO_TEXT(Sender, record_.Sender)
    AUTO_TEXT(Recipient, record_.Recipient)
    AUTO_TEXT(Data, record_.Data)
    AUTO_NUMBER(Format, record_.Format)
    AUTO_NUMBER(ValidityPeriod, record_.ValidityPeriod)
    AUTO_TEXT(SMSC, record_.SMSC)
    AUTO_TEXT(Time, record_.Time)
    AUTO_NUMBER(TimeSecs, record_.TimeSecs)
    AUTO_NUMBER(PID, record_.PID)
    AUTO_NUMBER(DCS, record_.DCS)
    AUTO_NUMBER(ESM, record_.ESM)
    AUTO_NUMBER(SourceTON, record_.SourceTON)
    AUTO_NUMBER(SourceNPI, record_.SourceNPI)
    AUTO_NUMBER(DestinationTON, record_.DestinationTON)
    AUTO_NUMBER(DestinationNPI, record_.DestinationNPI)
    AUTO_TEXT(ServiceType, record_.ServiceType)

    STDMETHODIMP get_RequestDeliveryStatus(LONG* pVal) noexcept override {
        return Give(pVal, record_.RequestDeliveryStatus ? -1 : 0);
    }
    STDMETHODIMP put_RequestDeliveryStatus(LONG newVal) noexcept override {
        record_.RequestDeliveryStatus = newVal != 0;
        return S_OK;
    }

  private:
    CSmsMessageX record_;
};

// A BSTR that an accessor gave or that one is to be given.
class Text {
  public:
    Text() = default;
    template <class Value>
    explicit Text(const Value& value) : text_(NewBstr(value)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { ::SysFreeString(text_); }
    BSTR* operator&() { return &text_; }
    BSTR get() const { return text_; }

  private:
    BSTR text_ = nullptr;
};

using TextGetter = HRESULT (STDMETHODCALLTYPE ISmsMessage::*)(BSTR*);
using NumberGetter = HRESULT (STDMETHODCALLTYPE ISmsMessage::*)(LONG*);

std::string Read(ISmsMessage* source, TextGetter getter) {
    Text text;
    (source->*getter)(&text);
    return AnsiOf(text.get());
}

std::int32_t Read(ISmsMessage* source, NumberGetter getter) {
    LONG value = 0;
    (source->*getter)(&value);
    return value;
}

}  // namespace

IUnknown* CreateSmsMessage() { return new SmsMessageAuto; }

ResultCode CopyFromAutomation(const VARIANT* value, CSmsMessageX& record) {
    const auto source = ComPointer<ISmsMessage>::In(value);
    if (!source) return result::InvalidMessageObject;
    ISmsMessage* const from = source.get();
    record.Sender = Read(from, &ISmsMessage::get_Sender);
    Recipient recipient = ParseRecipient(Read(from, &ISmsMessage::get_Recipient));
    record.Recipient = std::move(recipient.address);
    record.DestinationPort = recipient.port;
    record.ServiceType = Read(from, &ISmsMessage::get_ServiceType);
    record.SMSC = Read(from, &ISmsMessage::get_SMSC);
    record.Time = Read(from, &ISmsMessage::get_Time);
    Text data;
    from->get_Data(&data);
    record.Data = WideOf(data.get());
    record.Format = Read(from, &ISmsMessage::get_Format);
    record.ValidityPeriod = Read(from, &ISmsMessage::get_ValidityPeriod);
    record.TimeSecs = Read(from, &ISmsMessage::get_TimeSecs);
    record.DCS = Read(from, &ISmsMessage::get_DCS);
    record.ESM = Read(from, &ISmsMessage::get_ESM);
    record.PID = Read(from, &ISmsMessage::get_PID);
    record.SourceTON = Read(from, &ISmsMessage::get_SourceTON);
    record.SourceNPI = Read(from, &ISmsMessage::get_SourceNPI);
    record.DestinationTON = Read(from, &ISmsMessage::get_DestinationTON);
    record.DestinationNPI = Read(from, &ISmsMessage::get_DestinationNPI);
    record.RequestDeliveryStatus = Read(from, &ISmsMessage::get_RequestDeliveryStatus) != 0;
    return result::Success;
}

ResultCode CopyToAutomation(const CSmsMessageX& record, ISmsMessage* target) {
    if (target == nullptr) return result::InvalidMessageObject;
    target->put_Sender(Text(record.Sender).get());
    target->put_Recipient(Text(record.Recipient).get());
    target->put_ServiceType(Text(record.ServiceType).get());
    target->put_SMSC(Text(record.SMSC).get());
    target->put_Time(Text(record.Time).get());
    target->put_Data(Text(record.Data).get());
    target->put_Format(record.Format);
    target->put_ValidityPeriod(record.ValidityPeriod);
    target->put_TimeSecs(record.TimeSecs);
    target->put_RequestDeliveryStatus(record.RequestDeliveryStatus ? -1 : 0);
    target->put_DCS(record.DCS);
    target->put_ESM(record.ESM);
    target->put_PID(record.PID);
    target->put_SourceTON(record.SourceTON);
    target->put_SourceNPI(record.SourceNPI);
    target->put_DestinationTON(record.DestinationTON);
    target->put_DestinationNPI(record.DestinationNPI);
    return result::Success;
}

void GiveSmsMessage(VARIANT* out, const CSmsMessageX& record) {
    auto* message = new SmsMessageAuto;
    GiveObject(out, message);
    (void)CopyToAutomation(record, message);
}
