// smpp_sink PORT: answers until its input ends.
#include "SmppSink.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    const SmppSink sink(static_cast<std::uint16_t>(argc > 1 ? std::atoi(argv[1]) : 2775));
    for (std::string line; std::getline(std::cin, line);) {
    }
    return 0;
}
