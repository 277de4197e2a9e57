#include "smsdata/BuilderAuto.h"
#include "smsdata/SmsDataWapBookmark.h"

namespace {

class SmsDataWapBookmarkAuto final : public BuilderAuto<ISmsDataWapBookmark, CSmsDataWapBookmark> {
  public:
    AUTO_TEXT(Description, content_.Description)
    AUTO_TEXT(URL, content_.URL)
};

}  // namespace

IUnknown* CreateSmsDataWapBookmark() { return new SmsDataWapBookmarkAuto; }
