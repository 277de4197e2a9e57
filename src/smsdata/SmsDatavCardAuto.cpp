#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDatavCard.h"

namespace {

class SmsDatavCardAuto final : public BuilderAuto<ISmsDatavCard, CSmsDatavCard> {
  public:
    AUTO_TEXT(Name, content_.Name)
    AUTO_TEXT(Phone, content_.Phone)
    AUTO_TEXT(PhoneWork, content_.PhoneWork)
    AUTO_TEXT(PhoneHome, content_.PhoneHome)
    AUTO_TEXT(Mobile, content_.Mobile)
    AUTO_TEXT(Pager, content_.Pager)
    AUTO_TEXT(Fax, content_.Fax)
    AUTO_TEXT(Email, content_.Email)
    AUTO_TEXT(Title, content_.Title)
    AUTO_TEXT(URL, content_.URL)
};

}  // namespace

IUnknown* CreateSmsDatavCard() { return new SmsDatavCardAuto; }
