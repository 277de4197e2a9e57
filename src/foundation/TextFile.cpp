#include "foundation/TextFile.h"

#include "foundation/FileReplace.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace {

struct Closer {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

// A name with a zero octet in it would be cut there and mean another file.
bool IsName(const std::string& name) { return name.find('\0') == std::string::npos; }

File Open(const std::string& name, const char* mode) {
    return File(IsName(name) ? std::fopen(name.c_str(), mode) : nullptr);
}

}  // namespace

std::optional<std::string> ReadTextFile(const std::string& name, std::size_t limit) {
    const File file = Open(name, "rb");  // text mode would end at a Ctrl-Z
    if (!file) return std::nullopt;
    std::string text;
    std::array<char, 16384> chunk{};
    while (text.size() < limit) {
        const std::size_t size =
            std::fread(chunk.data(), 1, std::min(chunk.size(), limit - text.size()), file.get());
        if (size == 0) break;
        text.append(chunk.data(), size);
    }
    if (text.empty() && std::ferror(file.get()) != 0) return std::nullopt;  // a folder opens on some systems
    ReplaceAll(text, "\r\n", "\n");
    return text;
}

bool WriteTextFile(const std::string& name, std::string_view text) {
    File file = Open(name, "wt+");
    if (!file) return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    return std::fclose(file.release()) == 0 && written;
}

bool ReplaceTextFile(const std::string& name, std::string_view text) {
    if (!IsName(name) || !CanReplaceFile(name)) return false;
    const std::string beside = name + ".new";
    if (!WriteTextFile(beside, text) || !ReplaceFileBy(name, beside)) {
        (void)std::remove(beside.c_str());
        return false;
    }
    return true;
}

bool AppendTextFile(const std::string& name, std::string_view text) {
    const File file = Open(name, "at");
    return file && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
}

void RemoveFile(const std::string& name) {
    if (IsName(name)) (void)std::remove(name.c_str());
}
