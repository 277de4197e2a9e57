// The submissions that wait for their response, found by sequence_number, and those that no longer wait but
// may still be answered.
#pragma once
#include "foundation/HashIndex.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
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
        if (!expired_.empty()) expired_.erase(submit.sequence);  // the numbers have gone round
        bySequence_.Insert(submit.sequence, static_cast<std::uint32_t>(entries_.size()));
        entries_.push_back(std::move(submit));
    }

    // The submission that a response answers, in time or late. It is then no longer waited for.
    std::optional<SmppInFlight> Complete(std::uint32_t sequence) {
        const auto place = bySequence_.Find(
            sequence, [&](std::uint32_t candidate) { return entries_[candidate].sequence == sequence; });
        if (place) return Take(*place);
        auto late = expired_.extract(sequence);
        if (late.empty()) return std::nullopt;
        return std::move(late.mapped());
    }

    // How long the oldest has been waiting; nothing when nothing waits.
    std::optional<std::uint32_t> LongestWait(std::uint32_t now) const {
        std::optional<std::uint32_t> longest;
        for (const SmppInFlight& entry : entries_) longest = std::max(longest.value_or(0), now - entry.since);
        return longest;
    }

    // Gives what has waited for the given time or longer to `expired`, and remembers it for a late answer.
    template <class Expired>
    void Expire(std::uint32_t now, std::uint32_t time, Expired expired) {
        if (entries_.empty() || now - oldest_ < time) return;
        oldest_ = now;
        for (std::size_t place = 0; place < entries_.size();) {
            if (now - entries_[place].since >= time) {
                SmppInFlight submit = Take(static_cast<std::uint32_t>(place));
                expired(submit);
                Remember(std::move(submit));
                continue;
            }
            if (now - entries_[place].since > now - oldest_) oldest_ = entries_[place].since;
            ++place;
        }
    }

  private:
    static constexpr std::size_t kMostExpired = 65'536;

    void Remember(SmppInFlight submit) {
        if (expiredOrder_.size() >= kMostExpired) {
            expired_.erase(expiredOrder_.front());
            expiredOrder_.pop_front();
        }
        expiredOrder_.push_back(submit.sequence);
        expired_.insert_or_assign(submit.sequence, std::move(submit));
    }

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
    std::uint32_t oldest_ = 0;                                 // nothing was submitted before
    std::unordered_map<std::uint32_t, SmppInFlight> expired_;  // by sequence number
    std::deque<std::uint32_t> expiredOrder_;  // of their numbers; those answered late stay until their turn
};
