// Packing of 7-bit codes into octets, 3GPP TS 23.038 section 6.1.2.1, behind a user data header or without
// one.
#pragma once
#include <cstdint>
#include <span>

namespace septets {

// Fill bits between a header of the given octets (UDHL octet included) and the first septet boundary.
constexpr std::size_t FillBits(std::size_t headerOctets) { return (7 - 8 * headerOctets % 7) % 7; }

// Septets that a header of the given octets (UDHL octet included) takes up.
constexpr std::size_t HeaderSeptets(std::size_t headerOctets) { return (8 * headerOctets + 6) / 7; }

// Packs the codes and returns the number of octets written, at most codes.size() + 1.
std::size_t Pack(std::span<const std::uint8_t> codes, std::size_t headerOctets, std::uint8_t* octets);

// Unpacks at most `maximum` codes and returns their number; `codes` has room for 8 codes per 7 octets.
std::size_t Unpack(std::span<const std::uint8_t> octets, std::size_t headerOctets, std::size_t maximum,
                   std::uint8_t* codes);

}  // namespace septets
