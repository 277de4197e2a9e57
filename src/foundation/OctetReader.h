// Reads octets from a buffer in order. Reading past the end gives zeros and is remembered.
#pragma once
#include <algorithm>
#include <cstdint>
#include <string_view>

class OctetReader {
  public:
    explicit OctetReader(std::string_view octets) : octets_(octets) {}

    std::uint8_t Octet() {
        if (at_ < octets_.size()) return static_cast<std::uint8_t>(octets_[at_++]);
        overrun_ = true;
        return 0;
    }
    // The most significant octet first.
    std::uint32_t Number(std::size_t octets) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < octets; ++i) value = value << 8 | Octet();
        return value;
    }
    // The next octets, or what is left of them.
    std::string_view Take(std::size_t count) {
        const std::string_view taken = octets_.substr(at_, count);
        overrun_ = overrun_ || taken.size() < count;
        at_ += taken.size();
        return taken;
    }
    // Up to a zero octet, which is read away; all that is left when there is none.
    std::string_view TextString() {
        const std::size_t end = octets_.find('\0', at_);
        if (end == std::string_view::npos) return Take(Left() + 1);
        const std::string_view text = octets_.substr(at_, end - at_);
        at_ = end + 1;
        return text;
    }

    // The octet that comes next, 0 at the end.
    std::uint8_t Peek() const { return AtEnd() ? std::uint8_t{0} : static_cast<std::uint8_t>(octets_[at_]); }
    void Skip(std::size_t count) { (void)Take(count); }
    std::size_t Left() const { return octets_.size() - at_; }
    std::size_t Position() const { return at_; }
    bool AtEnd() const { return at_ == octets_.size(); }
    // Whether more was asked for than there was.
    bool Overrun() const { return overrun_; }

  private:
    std::string_view octets_;
    std::size_t at_ = 0;
    bool overrun_ = false;
};
