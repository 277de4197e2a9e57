// The class MmsConstants: one read-only property per constant.
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class MmsConstantsAuto final : public Automation<IMmsConstants> {
  public:
#define CONSTANTS_AS_GETTERS
#include "mms/MmsConstants.inc"
};

}  // namespace

IUnknown* CreateMmsConstants() { return new MmsConstantsAuto; }
