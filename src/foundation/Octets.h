// Octets that are no text: nothing that they cross, the automation interface above all, may read them through
// a code page.
#pragma once
#include <string>

struct Octets {
    std::string bytes;

    bool operator==(const Octets&) const = default;
};
