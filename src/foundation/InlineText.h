// A short text that lies in its object, whatever the length, and allocates nothing.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

template <std::size_t Capacity>
class InlineText {
  public:
    constexpr InlineText() = default;

    // What goes beyond the capacity is left out.
    constexpr InlineText(std::string_view text) : size_(std::min(text.size(), Capacity)) {
        std::copy_n(text.data(), size_, octets_.data());
    }
    constexpr InlineText(const std::array<char, Capacity>& text) : size_(Capacity), octets_(text) {}

    constexpr operator std::string_view() const { return {octets_.data(), size_}; }
    friend constexpr bool operator==(const InlineText& a, std::string_view b) {
        return std::string_view(a) == b;
    }

  private:
    std::size_t size_ = 0;
    std::array<char, Capacity> octets_{};
};
