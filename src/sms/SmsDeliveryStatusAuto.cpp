#include "sms/SmsDeliveryStatusAuto.h"

#include "foundation/ErrorTexts.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsDeliveryStatusAuto final : public Automation<ISmsDeliveryStatus> {
  public:
    AUTO_NUMBER(Status, status_)
    AUTO_NUMBER(StatusCode, statusCode_)
    AUTO_TEXT(StatusCompletedTime, completedTime_)
    AUTO_NUMBER(StatusCompletedTimeSecs, completedTimeSecs_)
    AUTO_NUMBER(IsCompleted, isCompleted_)
    AUTO_TEXT(ProviderReference, providerReference_)

    STDMETHODIMP get_StatusDescription(BSTR* pVal) noexcept override {
        return Give(pVal, DeliveryStatusText(status_));
    }

  private:
    std::int32_t status_ = 0;
    std::int32_t statusCode_ = 0;
    std::string completedTime_ = "n/a";
    std::int32_t completedTimeSecs_ = 0;
    std::int32_t isCompleted_ = 0;
    std::string providerReference_;
};

}  // namespace

IUnknown* CreateSmsDeliveryStatus() { return new SmsDeliveryStatusAuto; }

ResultCode FillStatus(const CSmsDeliveryReport& report, const VARIANT* target) {
    const auto status = ComPointer<ISmsDeliveryStatus>::In(target);
    if (!status) return result::InvalidMessageObject;
    BSTR time = NewBstr(TimeText(SystemClock(), report.completedTime));
    BSTR provider = NewBstr(report.providerReference);
    status->put_Status(report.status);
    status->put_StatusCode(report.statusCode);
    status->put_StatusCompletedTimeSecs(report.completedTime);
    status->put_StatusCompletedTime(time);
    status->put_ProviderReference(provider);
    status->put_IsCompleted(IsCompletedStatus(report.status) ? -1 : 0);
    ::SysFreeString(time);
    ::SysFreeString(provider);
    return result::Success;
}

void GiveDeliveryStatus(VARIANT* out, const CSmsDeliveryReport& report) {
    GiveObject(out, new SmsDeliveryStatusAuto);
    (void)FillStatus(report, out);
}
