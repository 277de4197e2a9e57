// The class SmsConstants: one read-only property per constant.
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsConstantsAuto final : public Automation<ISmsConstants> {
  public:
#define SMS_CONSTANT(name, value, dispid, help) \
    STDMETHODIMP get_##name(LONG* pVal) noexcept override { return Give(pVal, value); }
#include "sms/SmsConstants.inc"
};

}  // namespace

IUnknown* CreateSmsConstants() { return new SmsConstantsAuto; }
