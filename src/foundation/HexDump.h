// Octets as a log shows them.
#pragma once
#include <string>
#include <string_view>

// Appends a line for every 16 octets: offset, hexadecimal, and what is printable ("." for the rest).
void DumpOctets(std::string& text, std::string_view octets);
