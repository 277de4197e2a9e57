#include "foundation/ComputerName.h"

#include <array>
#include <unistd.h>

std::string ComputerName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 && name[0] != '\0' ? name.data() : "localhost";
}
