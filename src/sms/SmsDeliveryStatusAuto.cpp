#include "sms/SmsDeliveryStatusAuto.h"

#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsDeliveryStatusAuto final : public Automation<ISmsDeliveryStatus> {
  public:
    SmsDeliveryStatusAuto() = default;
    SmsDeliveryStatusAuto(const CSmsDeliveryReport& report, std::string completedTime)
        : status_(report.status),
          statusCode_(report.statusCode),
          completedTime_(std::move(completedTime)),
          completedTimeSecs_(report.completedTime),
          isCompleted_(IsCompletedStatus(report.status) ? -1 : 0),
          providerReference_(report.providerReference) {}

    AUTO_NUMBER(Status, status_)
    AUTO_NUMBER(StatusCode, statusCode_)
    AUTO_TEXT(StatusCompletedTime, completedTime_)
    AUTO_NUMBER(StatusCompletedTimeSecs, completedTimeSecs_)
    AUTO_NUMBER(IsCompleted, isCompleted_)
    AUTO_TEXT(ProviderReference, providerReference_)
    AUTO_TEXT_READ(StatusDescription, DeliveryStatusText(status_))

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

ComPointer<IDispatch> NewDeliveryStatus(const CSmsDeliveryReport& report, std::string completedTime) {
    return ComPointer<IDispatch>(new SmsDeliveryStatusAuto(report, std::move(completedTime)));
}
