#include "foundation/OpenFile.h"

File OpenNamedFile(const std::string& name, const char* mode) {
    return File(name.find('\0') == std::string::npos ? platform::OpenNamedFile(name, mode) : nullptr);
}
