// The submissions that wait for their response, found by sequence_number.
#pragma once
#include "foundation/HashIndex.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct SmppInFlight {
    std::string reference;
    bool wantsReport = false;
    std::uint32_t sequence = 0;
    std::uint32_t since = 0;  // tick of the submission
};

class SmppWindow {
  public:
    std::size_t Size() const { return entries_.size(); }

    void Offer(SmppInFlight submit) {
        if (entries_.empty()) oldest_ = submit.since;
        bySequence_.Insert(submit.sequence, static_cast<std::uint32_t>(entries_.size()));
        entries_.push_back(std::move(submit));
    }

    // The submission that a response answers, which is then no longer in flight.
    std::optional<SmppInFlight> Complete(std::uint32_t sequence) {
        const auto place = bySequence_.Find(
            sequence, [&](std::uint32_t candidate) { return entries_[candidate].sequence == sequence; });
        if (!place) return std::nullopt;
        return Take(*place);
    }

    // Gives what has waited for the given time or longer to `expired`.
    template <class Expired>
    void Expire(std::uint32_t now, std::uint32_t time, Expired expired) {
        if (entries_.empty() || now - oldest_ < time) return;
        oldest_ = now;
        for (std::size_t place = 0; place < entries_.size();) {
            if (now - entries_[place].since >= time) {
                expired(Take(static_cast<std::uint32_t>(place)));
                continue;
            }
            if (now - entries_[place].since > now - oldest_) oldest_ = entries_[place].since;
            ++place;
        }
    }

  private:
    // The last entry moves to the place that becomes free.
    SmppInFlight Take(std::uint32_t place) {
        SmppInFlight taken = std::move(entries_[place]);
        bySequence_.Erase(taken.sequence, place);
        const auto last = static_cast<std::uint32_t>(entries_.size() - 1);
        if (place != last) {
            bySequence_.Erase(entries_[last].sequence, last);
            bySequence_.Insert(entries_[last].sequence, place);
            entries_[place] = std::move(entries_[last]);
        }
        entries_.pop_back();
        return taken;
    }

    std::vector<SmppInFlight> entries_;
    HashIndex bySequence_;
    std::uint32_t oldest_ = 0;  // nothing was submitted before
};
