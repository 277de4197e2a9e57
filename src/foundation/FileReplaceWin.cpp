#include "foundation/FileReplace.h"

#include <windows.h>

bool CanReplaceFile(const std::string& name) {
    const DWORD attributes = ::GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return !name.empty();
    return (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) == 0;
}

bool ReplaceFileBy(const std::string& name, const std::string& beside) {
    HANDLE file = ::CreateFileA(beside.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool flushed = ::FlushFileBuffers(file) != FALSE;
    ::CloseHandle(file);
    return flushed && ::MoveFileExA(beside.c_str(), name.c_str(),
                                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
}
