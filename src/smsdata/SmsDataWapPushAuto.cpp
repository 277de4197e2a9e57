#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataWapPush.h"

namespace {

class SmsDataWapPushAuto final : public BuilderAuto<ISmsDataWapPush, CSmsDataWapPush> {
  public:
    AUTO_TEXT(SignalReference, content_.SignalReference)
    AUTO_NUMBER(SignalAction, content_.SignalAction)
    AUTO_TEXT(Description, content_.Description)
    AUTO_TEXT(URL, content_.URL)
    AUTO_NUMBER(ConnectionType, content_.ConnectionType)
    AUTO_NUMBER(ExecuteAction, content_.ExecuteAction)
};

}  // namespace

IUnknown* CreateSmsDataWapPush() { return new SmsDataWapPushAuto; }
