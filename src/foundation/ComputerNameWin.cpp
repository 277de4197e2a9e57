#include "foundation/ComputerName.h"

#include <array>
#include <windows.h>

std::string ComputerName() {
    std::array<char, MAX_COMPUTERNAME_LENGTH + 1> name{};
    DWORD size = name.size();
    return ::GetComputerNameA(name.data(), &size) != 0 && size != 0 ? std::string(name.data(), size)
                                                                    : "localhost";
}
