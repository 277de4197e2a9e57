// The reply of a paging terminal to a block of TAP.
#pragma once
#include <string>
#include <string_view>

enum class TapResult {
    kNothing = 0,  // no answer yet
    kAcknowledged = 1,
    kInvalidPager = 2,
    kNotAllowed = 3,
    kInvalidMessage = 4,  // no reply gives it
    kSystemProblem = 5,
    kRefused = 6,
};

class TapResponse {
  public:
    // What was heard, of seven bits: texts, and the acknowledgement among or behind them.
    explicit TapResponse(std::string_view octets);

    TapResult Result() const { return result_; }
    // The printable characters at the beginning.
    const std::string& Text() const { return text_; }

  private:
    TapResult result_;
    std::string text_;
};
