#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDatavCard.h"

namespace {

class SmsDatavCardAuto final : public BuilderAuto<ISmsDatavCard, CSmsDatavCard> {
  public:
    AUTO_TEXT(Name, engine_.Name)
    AUTO_TEXT(Phone, engine_.Phone)
    AUTO_TEXT(PhoneWork, engine_.PhoneWork)
    AUTO_TEXT(PhoneHome, engine_.PhoneHome)
    AUTO_TEXT(Mobile, engine_.Mobile)
    AUTO_TEXT(Pager, engine_.Pager)
    AUTO_TEXT(Fax, engine_.Fax)
    AUTO_TEXT(Email, engine_.Email)
    AUTO_TEXT(Title, engine_.Title)
    AUTO_TEXT(URL, engine_.URL)
};

}  // namespace

IUnknown* CreateSmsDatavCard() { return new SmsDatavCardAuto; }
