#include "foundation/UniqueNumber.h"

#include <windows.h>

std::uint32_t ProcessNumber() { return ::GetCurrentProcessId(); }
