// The name of this computer.
#pragma once
#include <string>

// "localhost" when the system does not tell.
std::string ComputerName();
