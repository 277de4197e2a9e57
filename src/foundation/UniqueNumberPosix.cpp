#include "foundation/UniqueNumber.h"

#include <unistd.h>

std::uint32_t ProcessNumber() { return static_cast<std::uint32_t>(::getpid()); }
