// Octets that are no text: nothing that they cross, the automation interface above all, may read them through
// a code page.
#pragma once
#include <string>
#include <string_view>

struct Octets {
    std::string bytes;

    bool operator==(const Octets&) const = default;
};

// The same, held elsewhere.
struct OctetsView {
    std::string_view bytes;
};
