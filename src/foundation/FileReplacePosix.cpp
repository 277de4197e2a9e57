#include "foundation/FileReplace.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool CanReplaceFile(const std::string& name) {
    struct stat info {};
    if (::stat(name.c_str(), &info) != 0) return !name.empty();
    return S_ISREG(info.st_mode) && (info.st_mode & S_IWUSR) != 0;
}

bool ReplaceFileBy(const std::string& name, const std::string& beside) {
    const int file = ::open(beside.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool synced = ::fsync(file) == 0;
    ::close(file);
    return synced && std::rename(beside.c_str(), name.c_str()) == 0;
}
