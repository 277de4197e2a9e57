#include "foundation/OpenFile.h"

std::FILE* platform::OpenNamedFile(const std::string& name, const char* mode) {
    return std::fopen(name.c_str(), mode);
}
