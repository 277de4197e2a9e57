// The reply of an SMS centre to a UCP operation, and how it is found on a line.
#pragma once
#include <string>
#include <string_view>

enum class UcpResult {
    kAcknowledged = 0,
    kRefused = 1,
    kSyntaxError = 2,
    kNothingReceived = 3,
};

class UcpResponse {
  public:
    // The reply from STX to ETX.
    explicit UcpResponse(std::string_view octets);

    UcpResult Result() const { return result_; }
    // "A" or "N" and the field behind it ("N/02"); empty for the other results.
    const std::string& Text() const { return text_; }

  private:
    UcpResult result_;
    std::string text_;
};

struct UcpFrame {
    std::string_view octets;
    bool isWhole = false;  // from STX to ETX
};

// The first whole frame among what was heard, without the noise before it. As long as none is whole, what
// there is of one; all that was heard when none has begun.
UcpFrame FindUcpFrame(std::string_view heard);
