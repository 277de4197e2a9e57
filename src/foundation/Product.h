// What the product says of itself.
#pragma once
#include "foundation/ProductVersion.h"

#define PRODUCT_TEXT_OF(number) #number
#define PRODUCT_TEXT(number) PRODUCT_TEXT_OF(number)

namespace product {
inline constexpr const char* kVersion = PRODUCT_TEXT(PRODUCT_MAJOR) "." PRODUCT_TEXT(PRODUCT_MINOR) " (x64)";
inline constexpr const char* kBuild = PRODUCT_TEXT(PRODUCT_MAJOR) "." PRODUCT_TEXT(
    PRODUCT_MINOR) "." PRODUCT_TEXT(PRODUCT_RELEASE) "." PRODUCT_TEXT(PRODUCT_BUILD) " (x64)";
inline constexpr const char* kModule = PRODUCT_MODULE;
}  // namespace product

#undef PRODUCT_TEXT
#undef PRODUCT_TEXT_OF
