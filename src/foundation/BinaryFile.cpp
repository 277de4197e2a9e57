#include "foundation/BinaryFile.h"

#include "foundation/OpenFile.h"

std::optional<std::string> ReadBinaryFile(const std::string& name, std::size_t limit) {
    const File file = OpenNamedFile(name, "rb");
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return std::nullopt;
    const long size = std::ftell(file.get());  // below 0 where it has none; a huge number for folders
    if (size < 0 || static_cast<std::size_t>(size) > limit) return std::nullopt;
    std::rewind(file.get());
    std::string octets(static_cast<std::size_t>(size), '\0');
    octets.resize(std::fread(octets.data(), 1, octets.size(), file.get()));
    if (std::ferror(file.get()) != 0) return std::nullopt;
    return octets;
}

bool WriteBinaryFile(const std::string& name, std::string_view octets) {
    File file = OpenNamedFile(name, "wb");
    if (!file) return false;
    const bool written = std::fwrite(octets.data(), 1, octets.size(), file.get()) == octets.size();
    return std::fclose(file.release()) == 0 && written;
}

bool CanReadFile(const std::string& name) {
    const File file = OpenNamedFile(name, "rb");
    if (!file) return false;
    (void)std::fgetc(file.get());
    return std::ferror(file.get()) == 0;  // a folder opens on some systems
}
