#include "foundation/FileReplace.h"

#include <windows.h>

bool CanReplaceFile(const std::string& name) {
    const DWORD attributes = ::GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return !name.empty();
    return (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) == 0;
}

bool ReplaceFileBy(const std::string& name, const std::string& beside) {
    return ::MoveFileExA(beside.c_str(), name.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
           0;
}
