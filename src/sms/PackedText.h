// A short text inside a record: up to `Size` octets lie in place, a longer one elsewhere.
#pragma once
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

template <std::size_t Size>
class PackedText {
    static_assert(Size < 0xFF);

  public:
    static constexpr bool Fits(std::string_view text) { return text.size() <= Size; }

    void Store(std::string_view text) {
        if (!text.empty()) std::memcpy(octets_.data(), text.data(), text.size());
        size_ = static_cast<std::uint8_t>(text.size());
    }
    void MarkElsewhere() { size_ = kElsewhere; }
    bool IsElsewhere() const { return size_ == kElsewhere; }
    std::string_view View() const { return {octets_.data(), size_}; }

  private:
    static constexpr std::uint8_t kElsewhere = 0xFF;
    std::uint8_t size_ = 0;
    std::array<char, Size> octets_;
};
