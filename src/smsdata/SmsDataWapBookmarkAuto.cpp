#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataWapBookmark.h"

namespace {

class SmsDataWapBookmarkAuto final : public BuilderAuto<ISmsDataWapBookmark, CSmsDataWapBookmark> {
  public:
    AUTO_TEXT(Description, engine_.Description)
    AUTO_TEXT(URL, engine_.URL)
};

}  // namespace

IUnknown* CreateSmsDataWapBookmark() { return new SmsDataWapBookmarkAuto; }
