#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataMmsNotification.h"

namespace {

class SmsDataMmsNotificationAuto final
    : public BuilderAuto<ISmsDataMmsNotification, CSmsDataMmsNotification> {
  public:
    AUTO_TEXT(From, engine_.From)
    AUTO_TEXT(Subject, engine_.Subject)
    AUTO_NUMBER(Class, engine_.Class)
    AUTO_NUMBER(Expiration, engine_.Expiration)
    AUTO_TEXT(ContentLocation, engine_.ContentLocation)
    AUTO_NUMBER(MessageSize, engine_.MessageSize)
    AUTO_TEXT(TransactionId, engine_.TransactionId)
    AUTO_TEXT(EncodedMessage, engine_.EncodedMessage)
};

}  // namespace

IUnknown* CreateSmsDataMmsNotification() { return new SmsDataMmsNotificationAuto; }
