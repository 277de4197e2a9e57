// The class SmsConstants: one read-only property per constant.
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class SmsConstantsAuto final : public Automation<ISmsConstants> {
  public:
#define CONSTANTS_AS_GETTERS
#include "sms/SmsConstants.inc"
};

}  // namespace

IUnknown* CreateSmsConstants() { return new SmsConstantsAuto; }
