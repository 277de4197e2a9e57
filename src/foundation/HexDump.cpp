#include "foundation/HexDump.h"

#include "foundation/Hex.h"

namespace {

constexpr std::size_t kOctetsInLine = 16;

void DumpLine(std::string& text, std::string_view line) {
    for (std::size_t i = 0; i < kOctetsInLine; ++i) {
        if (i < line.size()) {
            hex::Append(text, static_cast<std::uint8_t>(line[i]));
            text += ' ';
        } else {
            text += "   ";
        }
    }
    text += "  ";
    for (const char octet : line) text += octet >= 0x20 && octet < 0x7F ? octet : '.';
    text += '\n';
}

}  // namespace

void DumpOctets(std::string& text, std::string_view octets) {
    for (std::size_t at = 0; at < octets.size(); at += kOctetsInLine) {
        hex::Append(text, static_cast<std::uint8_t>(at >> 8));
        hex::Append(text, static_cast<std::uint8_t>(at));
        text += "  ";
        DumpLine(text, octets.substr(at, kOctetsInLine));
    }
}
