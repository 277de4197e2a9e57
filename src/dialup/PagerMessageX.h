// The form in which the pager channel handles one page.
#pragma once
#include <string>

struct CPagerMessageX {
    std::string Recipient;  // pager identifier
    std::string Data;       // the text, in the system's code page
};
