#include "sms/SmsMessageAuto.h"

#include "NeltCtrl.h"
#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "frame/AutomationAuto.h"
#include "frame/RecordAuto.h"

namespace {

// Every field that an SmsMessage shows, with the property that shows it.
template <class Visit>
void EachField(Visit visit) {
    visit(&CSmsMessageX::Sender, &ISmsMessage::get_Sender);
    visit(&CSmsMessageX::Recipient, &ISmsMessage::get_Recipient);
    visit(&CSmsMessageX::ServiceType, &ISmsMessage::get_ServiceType);
    visit(&CSmsMessageX::SMSC, &ISmsMessage::get_SMSC);
    visit(&CSmsMessageX::Time, &ISmsMessage::get_Time);
    visit(&CSmsMessageX::Data, &ISmsMessage::get_Data);
    visit(&CSmsMessageX::Format, &ISmsMessage::get_Format);
    visit(&CSmsMessageX::ValidityPeriod, &ISmsMessage::get_ValidityPeriod);
    visit(&CSmsMessageX::TimeSecs, &ISmsMessage::get_TimeSecs);
    visit(&CSmsMessageX::DCS, &ISmsMessage::get_DCS);
    visit(&CSmsMessageX::ESM, &ISmsMessage::get_ESM);
    visit(&CSmsMessageX::PID, &ISmsMessage::get_PID);
    visit(&CSmsMessageX::SourceTON, &ISmsMessage::get_SourceTON);
    visit(&CSmsMessageX::SourceNPI, &ISmsMessage::get_SourceNPI);
    visit(&CSmsMessageX::DestinationTON, &ISmsMessage::get_DestinationTON);
    visit(&CSmsMessageX::DestinationNPI, &ISmsMessage::get_DestinationNPI);
    visit(&CSmsMessageX::RequestDeliveryStatus, &ISmsMessage::get_RequestDeliveryStatus);
}

void CopyFields(const CSmsMessageX& from, CSmsMessageX& to) {
    EachField([&](auto field, auto) { to.*field = from.*field; });
}

class SmsMessageAuto final : public Automation<ISmsMessage> {
  public:
    SmsMessageAuto() = default;
    explicit SmsMessageAuto(const CSmsMessageX& record) { CopyFields(record, record_); }

    const CSmsMessageX& Record() const { return record_; }

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
    AUTO_FLAG(RequestDeliveryStatus, record_.RequestDeliveryStatus)

  private:
    bool IsOwnIid(REFIID iid) const override { return IsEqualIID(iid, OwnIid<SmsMessageAuto>()); }

    CSmsMessageX record_;
};

}  // namespace

IUnknown* CreateSmsMessage() { return new SmsMessageAuto; }

ResultCode CopyFromAutomation(const VARIANT* value, CSmsMessageX& record) {
    const ResultCode code = record::Read<SmsMessageAuto, ISmsMessage>(
        ObjectIn(value), record, [](auto visit) { EachField(visit); }, result::InvalidMessageObject);
    if (code != result::Success) return code;
    Recipient recipient = ParseRecipient(record.Recipient);
    record.Recipient = std::move(recipient.address);
    record.DestinationPort = recipient.port;
    return result::Success;
}

ComPointer<IDispatch> NewSmsMessage(const CSmsMessageX& record) {
    return ComPointer<IDispatch>(new SmsMessageAuto(record));
}
