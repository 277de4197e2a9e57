// Finds records by the hash of a key that stays in the record: an open-addressing table of (hash, place)
// pairs. Several places may share a hash; the caller compares keys.
#pragma once
#include <cstdint>
#include <optional>
#include <vector>

class HashIndex {
  public:
    void Insert(std::uint32_t hash, std::uint32_t place) {
        if (4 * (used_ + 1) > 3 * slots_.size()) Grow();
        Put(hash, place);
        ++used_;
    }

    // The first place of the hash that the predicate accepts.
    template <class IsWanted>
    std::optional<std::uint32_t> Find(std::uint32_t hash, IsWanted isWanted) const {
        if (slots_.empty()) return std::nullopt;
        for (std::size_t at = hash & Mask(); slots_[at].place != kFree; at = (at + 1) & Mask()) {
            if (slots_[at].hash == hash && isWanted(slots_[at].place)) return slots_[at].place;
        }
        return std::nullopt;
    }

    void Erase(std::uint32_t hash, std::uint32_t place) {
        if (slots_.empty()) return;
        std::size_t hole = hash & Mask();
        while (slots_[hole].place != place || slots_[hole].hash != hash) {
            if (slots_[hole].place == kFree) return;
            hole = (hole + 1) & Mask();
        }
        // What was pushed past the hole moves back into it, so that no search ends too early.
        for (std::size_t at = (hole + 1) & Mask(); slots_[at].place != kFree; at = (at + 1) & Mask()) {
            const std::size_t home = slots_[at].hash & Mask();
            if (((at - home) & Mask()) < ((at - hole) & Mask())) continue;
            slots_[hole] = slots_[at];
            hole = at;
        }
        slots_[hole] = {};
        --used_;
    }

    void Clear() {
        slots_.clear();
        used_ = 0;
    }

  private:
    static constexpr std::uint32_t kFree = UINT32_MAX;
    static constexpr std::size_t kFirstSize = 16;
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = kFree;
    };

    std::size_t Mask() const { return slots_.size() - 1; }

    void Put(std::uint32_t hash, std::uint32_t place) {
        std::size_t at = hash & Mask();
        while (slots_[at].place != kFree) at = (at + 1) & Mask();
        slots_[at] = {hash, place};
    }

    void Grow() {
        std::vector<Slot> old(slots_.empty() ? kFirstSize : 2 * slots_.size());
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (slot.place != kFree) Put(slot.hash, slot.place);
        }
    }

    std::vector<Slot> slots_;  // a power of two, at most three quarters full
    std::size_t used_ = 0;
};
