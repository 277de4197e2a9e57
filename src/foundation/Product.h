// What the product says of itself.
#pragma once

namespace product {
inline constexpr const char* kVersion = "5.3 (x64)";
inline constexpr const char* kBuild = "5.3.10.1123 (x64)";
inline constexpr const char* kModule = "NeltCtrlx64.dll";
}  // namespace product
