// A listed SMS-DELIVER as a message: texts, time, header and body.
#pragma once
#include "Common/GsmPdu/UserDataHeader.h"
#include "foundation/Clock.h"

#include <cstdint>
#include <string>
#include <string_view>

class CPDUDecode {
  public:
    explicit CPDUDecode(Clock& clock = SystemClock()) : clock_(&clock) {}

    // False when the text is no SMS-DELIVER. Use a fresh object for each PDU: the originator of an earlier
    // one shows through under a number that is not international.
    [[nodiscard]] bool Decode(std::string_view hexText);

    std::u16string body;  // text; one character an octet for data
    CUserDataHeader header;
    std::string originator;
    std::string serviceCentre;
    LocalTimeText timeText;
    std::int32_t timeSeconds = 0;
    std::int32_t format = 0;  // asMESSAGEFORMAT_TEXT, _DATA or _UNICODE

  private:
    Clock* clock_;
};
