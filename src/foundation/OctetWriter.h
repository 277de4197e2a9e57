// Collects the octets of a message's content.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>

class OctetWriter {
  public:
    // Room for content whose texts have the given length, so that it grows in one go.
    explicit OctetWriter(std::size_t textLength) { octets_.reserve(textLength + kFraming); }

    // Goes on behind what `octets` holds.
    explicit OctetWriter(std::string&& octets) : octets_(std::move(octets)) {}

    void Octet(std::uint8_t value) { octets_.push_back(static_cast<char>(value)); }
    void Octets(std::initializer_list<std::uint8_t> values) {
        for (const std::uint8_t value : values) Octet(value);
    }
    void Octets(std::span<const std::uint8_t> values) {
        octets_.append(reinterpret_cast<const char*>(values.data()), values.size());
    }
    // Four octets, the most significant first.
    void Long(std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) Octet(static_cast<std::uint8_t>(value >> shift));
    }
    void Text(std::string_view text) { octets_ += text; }
    // The text and the zero octet that ends it.
    void TextString(std::string_view text) {
        Text(text);
        Octet(0);
    }

    const std::string& Written() const { return octets_; }
    std::string Take() { return std::move(octets_); }

  private:
    static constexpr std::size_t kFraming = 257;  // more than the fixed octets of any content
    std::string octets_;
};
