// One list of recipients of a multimedia message.
#pragma once
#include "foundation/Text.h"

#include <string>
#include <string_view>
#include <vector>

class CMmsRecipients {
  public:
    static constexpr std::string_view kSeparator = "||";

    // What holds separators is several.
    void Add(std::string_view recipients) {
        for (const std::string_view recipient : Split(recipients, kSeparator)) {
            if (!recipient.empty()) addresses_.emplace_back(recipient);
        }
    }
    void Clear() { addresses_.clear(); }

    bool IsEmpty() const { return addresses_.empty(); }
    const std::vector<std::string>& Addresses() const { return addresses_; }

    // Without blanks at either end; empty behind the last.
    std::string_view Address(std::size_t index) const {
        return index < addresses_.size() ? Trim(addresses_[index]) : std::string_view();
    }

  private:
    std::vector<std::string> addresses_;
};
