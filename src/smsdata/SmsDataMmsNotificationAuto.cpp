#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataMmsNotification.h"

namespace {

class SmsDataMmsNotificationAuto final
    : public BuilderAuto<ISmsDataMmsNotification, CSmsDataMmsNotification> {
  public:
    AUTO_TEXT(From, content_.From)
    AUTO_TEXT(Subject, content_.Subject)
    AUTO_NUMBER(Class, content_.Class)
    AUTO_NUMBER(Expiration, content_.Expiration)
    AUTO_TEXT(ContentLocation, content_.ContentLocation)
    AUTO_NUMBER(MessageSize, content_.MessageSize)
    AUTO_TEXT(TransactionId, content_.TransactionId)
    STDMETHODIMP put_EncodedMessage(BSTR newVal) noexcept override {
        return Store(content_.EncodedMessage, newVal);
    }
};

}  // namespace

IUnknown* CreateSmsDataMmsNotification() { return new SmsDataMmsNotificationAuto; }
