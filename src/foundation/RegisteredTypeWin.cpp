#include "foundation/RegisteredType.h"
#include "foundation/RegistryTextWin.h"

std::string RegisteredType(const std::string& extension) {
    // What has a separator in it would name a key elsewhere.
    if (extension.find_first_of(std::string_view("\\\0", 2)) != std::string::npos) return {};
    return RegistryText(HKEY_CLASSES_ROOT, "." + extension, "Content Type");
}
