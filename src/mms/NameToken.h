// Names for parts and transactions.
#pragma once
#include "foundation/Hex.h"
#include "foundation/UniqueNumber.h"

#include <string>

// Eight upper-case hexadecimal digits, a different text at every call, however fast the calls follow each
// other.
inline std::string NameToken() {
    std::string token;
    hex::AppendNumber(token, UniqueNumber());
    return token;
}
