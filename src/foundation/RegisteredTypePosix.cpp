#include "foundation/RegisteredType.h"

std::string RegisteredType(const std::string& /*extension*/) { return {}; }
