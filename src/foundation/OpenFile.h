// Opening files by name, whatever the length of the path.
#pragma once
#include <cstdio>
#include <memory>
#include <string>

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Null when the file cannot be opened. A name with a zero octet would be cut there and mean another file: it
// names none.
File OpenNamedFile(const std::string& name, const char* mode);

namespace platform {
std::FILE* OpenNamedFile(const std::string& name, const char* mode);
}  // namespace platform
