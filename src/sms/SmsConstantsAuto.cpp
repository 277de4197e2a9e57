// The class SmsConstants: one read-only property per constant.
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsConstantsAuto final : public Automation<ISmsConstants> {
  public:
#define SMS_GROUP(name, help)
#define SMS_GROUP_END(name)
#define SMS_CONSTANT(name, value, dispid, help) \
    STDMETHODIMP get_##name(LONG* pVal) noexcept override { return Give(pVal, value); }
#include "sms/SmsConstants.inc"
#undef SMS_GROUP
#undef SMS_GROUP_END
#undef SMS_CONSTANT
};

}  // namespace

IUnknown* CreateSmsConstants() { return new SmsConstantsAuto; }
