// What a modem's reply to an AT command means: the final results of 3GPP TS 27.005 and 27.007 and ITU-T
// V.250.
#pragma once
#include "foundation/ResultCode.h"

#include <string_view>

enum class AtStatus {
    kNone = 0,
    kUnexpected = 1,
    kOk = 3,
    kConnect = 4,
    kError = 5,
    kNoDialtone = 6,
    kNoCarrier = 7,
    kNoAnswer = 8,
    kBusy = 9,
    kExpected = 10,
};

struct AtOutcome {
    AtStatus status = AtStatus::kNone;
    ResultCode code = result::ModemNoResponse;  // that goes with it
};

// True when the line ends the reply: it holds a final result or the expected text.
bool EndsReply(std::string_view line, std::string_view expected);

// True when the line is a final result, and not one that a text only holds ("Brooke").
bool IsFinalResult(std::string_view line);

// True when the line ends a reply of many lines. Some of them may be other results, so that only "OK" and the
// errors end it.
bool EndsLines(std::string_view line);

// Classifies the last line of a reply; letters compare without case.
AtOutcome ClassifyReply(std::string_view reply, std::string_view expected);

// Tells the lines that a modem sends by itself from those of a reply.
class AtUnsolicited {
  public:
    // True for a line that is no answer: it is known not to be one unless it begins as `expected` does, or it
    // is the text that belongs to the line before.
    bool Takes(std::string_view line, std::string_view expected = {});

  private:
    bool textFollows_ = false;
};
