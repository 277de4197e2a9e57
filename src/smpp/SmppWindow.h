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
    std::size_t Size() const { return entries_.size() - free_.size(); }

    void Offer(SmppInFlight submit) {
        if (Size() == 0) oldest_ = submit.since;
        if (!expired_.empty()) expired_.erase(submit.sequence);  // the numbers have gone round
        if (free_.empty()) {
            free_.push_back(static_cast<std::uint32_t>(entries_.size()));
            entries_.emplace_back();
        }
        bySequence_.Insert(HashOf(submit.sequence), free_.back());
        entries_[free_.back()] = std::move(submit);
        free_.pop_back();
    }

    // The submission that a response answers, in time or late. It is then no longer waited for.
    std::optional<SmppInFlight> Complete(std::uint32_t sequence) {
        const auto place = bySequence_.Find(HashOf(sequence), [&](std::uint32_t candidate) {
            return entries_[candidate].sequence == sequence;
        });
        if (place) return Take(*place);
        auto late = expired_.extract(sequence);
        if (late.empty()) return std::nullopt;
        return std::move(late.mapped());
    }

    // How long the oldest has been waiting; nothing when nothing waits.
    std::optional<std::uint32_t> LongestWait(std::uint32_t now) const {
        std::optional<std::uint32_t> longest;
        for (const SmppInFlight& entry : entries_) {
            if (entry.sequence != kFree) longest = std::max(longest.value_or(0), now - entry.since);
        }
        return longest;
    }

    // Gives what has waited for the given time or longer to `expired`, and remembers it for a late answer.
    template <class Expired>
    void Expire(std::uint32_t now, std::uint32_t time, Expired expired) {
        if (Size() == 0 || now - oldest_ < time) return;
        oldest_ = now;
        for (std::uint32_t place = 0; place < entries_.size(); ++place) {
            if (entries_[place].sequence == kFree) continue;
            if (now - entries_[place].since >= time) {
                SmppInFlight submit = Take(place);
                expired(submit);
                Remember(std::move(submit));
            } else if (now - entries_[place].since > now - oldest_) {
                oldest_ = entries_[place].since;
            }
        }
    }

  private:
    static constexpr std::size_t kMostExpired = 65'536;
    static constexpr std::uint32_t kFree = 0;  // no sequence number

    // Numbers that count up lie apart: a run of neighbours would be walked through whenever one leaves it.
    static std::uint32_t HashOf(std::uint32_t sequence) { return sequence * 0x9E3779B1U; }

    void Remember(SmppInFlight submit) {
        if (expiredOrder_.size() >= kMostExpired) {
            expired_.erase(expiredOrder_.front());
            expiredOrder_.pop_front();
        }
        expiredOrder_.push_back(submit.sequence);
        expired_.insert_or_assign(submit.sequence, std::move(submit));
    }

    SmppInFlight Take(std::uint32_t place) {
        SmppInFlight taken = std::move(entries_[place]);
        bySequence_.Erase(HashOf(taken.sequence), place);
        free_.push_back(place);
        entries_[place].sequence = kFree;
        return taken;
    }

    std::vector<SmppInFlight> entries_;  // in places that stay
    std::vector<std::uint32_t> free_;    // places
    HashIndex bySequence_;
    std::uint32_t oldest_ = 0;                                 // nothing was submitted before
    std::unordered_map<std::uint32_t, SmppInFlight> expired_;  // by sequence number
    std::deque<std::uint32_t> expiredOrder_;  // of their numbers; those answered late stay until their turn
};
