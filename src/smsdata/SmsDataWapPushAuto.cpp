#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataWapPush.h"

namespace {

class SmsDataWapPushAuto final : public BuilderAuto<ISmsDataWapPush, CSmsDataWapPush> {
  public:
    AUTO_TEXT(SignalReference, engine_.SignalReference)
    AUTO_NUMBER(SignalAction, engine_.SignalAction)
    AUTO_TEXT(Description, engine_.Description)
    AUTO_TEXT(URL, engine_.URL)
    AUTO_NUMBER(ConnectionType, engine_.ConnectionType)
    AUTO_NUMBER(ExecuteAction, engine_.ExecuteAction)
};

}  // namespace

IUnknown* CreateSmsDataWapPush() { return new SmsDataWapPushAuto; }
