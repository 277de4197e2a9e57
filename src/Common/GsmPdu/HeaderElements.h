// The elements of a user data header that the component writes, 3GPP TS 23.040 section 9.2.3.24. The octet
// with the header's length, which stands before the first element, is the caller's.
#pragma once
#include <array>
#include <cstdint>

namespace udh {

inline constexpr std::uint8_t kConcatenation8 = 0x00;  // 8-bit reference
inline constexpr std::uint8_t kPorts8 = 0x04;
inline constexpr std::uint8_t kPorts16 = 0x05;
inline constexpr std::uint8_t kConcatenation16 = 0x08;  // 16-bit reference

inline constexpr std::size_t kConcatenationSize = 5;
inline constexpr std::size_t kPortsSize = 6;
inline constexpr std::int32_t kMostParts = 255;

// Part `number` (from 1) of `total`.
constexpr std::array<std::uint8_t, kConcatenationSize> Concatenation(std::uint8_t reference,
                                                                     std::uint8_t total,
                                                                     std::uint8_t number) {
    return {kConcatenation8, 3, reference, total, number};
}

constexpr std::array<std::uint8_t, kPortsSize> Ports(std::uint16_t destination, std::uint16_t source) {
    return {kPorts16,
            4,
            static_cast<std::uint8_t>(destination >> 8),
            static_cast<std::uint8_t>(destination),
            static_cast<std::uint8_t>(source >> 8),
            static_cast<std::uint8_t>(source)};
}

}  // namespace udh
