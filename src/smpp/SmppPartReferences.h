// The references by which a phone tells apart messages of several parts.
#pragma once
#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>

class SmppPartReferences {
  public:
    // The low octet of the tick count; when one of the last 200 messages has it, the next free one.
    std::uint8_t Next(std::uint32_t tick) {
        auto reference = static_cast<std::uint8_t>(tick % 65535);
        while (isTaken_[reference]) ++reference;
        if (count_ >= last_.size()) isTaken_.reset(last_[count_ % last_.size()]);
        last_[count_++ % last_.size()] = reference;
        isTaken_.set(reference);
        return reference;
    }

  private:
    std::array<std::uint8_t, 200> last_{};  // a ring
    std::bitset<256> isTaken_;
    std::size_t count_ = 0;  // given so far
};
