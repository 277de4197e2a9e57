// What is written to an SMS centre that is dialled: UCP operation 01 (call input) with an alphanumeric
// message, and the blocks of TAP, the paging entry protocol. Texts go in as they are, whatever they hold.
#pragma once
#include "foundation/ResultCode.h"

#include <array>
#include <cstddef>
#include <string_view>

class CSMSCMessage {
  public:
    static constexpr std::size_t kCapacity = 4097;  // octets

    // Each replaces the frame: 0, or 34033 when it does not fit, which leaves none.

    // Of each character of the text the low octet. No password when it is empty.
    ResultCode BuildUcp(std::string_view recipient, std::string_view originator, std::string_view password,
                        std::u16string_view text);
    ResultCode BuildTap(std::string_view recipient, std::string_view text);
    // The identification before the first block.
    ResultCode BuildTapLogon(std::string_view password);

    std::string_view Frame() const { return {buffer_.data(), length_}; }

  private:
    ResultCode Begin(std::size_t size);
    void Put(char octet) { buffer_[length_++] = octet; }
    void Put(std::string_view octets);
    unsigned SumFrom(std::size_t start) const;

    std::array<char, kCapacity> buffer_{};
    std::size_t length_ = 0;
};
