// Whole files of octets.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Nothing when the file cannot be opened or read, or is larger than `limit` octets.
std::optional<std::string> ReadBinaryFile(const std::string& name, std::size_t limit);

// Creates or replaces the file's contents; false when it cannot be written.
[[nodiscard]] bool WriteBinaryFile(const std::string& name, std::string_view octets);

// Whether there is a file, and no folder, that can be read.
bool CanReadFile(const std::string& name);
