// Whole text files. Line feeds are written as the platform's line ends and read back as line feeds. A name
// with a zero octet names no file.
#pragma once
#include <optional>
#include <string>
#include <string_view>

// The file's text, at most `limit` octets; nothing when it cannot be opened.
std::optional<std::string> ReadTextFile(const std::string& name, std::size_t limit);

// Creates or replaces the file's contents.
[[nodiscard]] bool WriteTextFile(const std::string& name, std::string_view text);

// As WriteTextFile, but the old file stays whole until the new one is: written beside it, then put in its
// place.
[[nodiscard]] bool ReplaceTextFile(const std::string& name, std::string_view text);

// Appends to the file, creating it when missing; false when it cannot be opened.
bool AppendTextFile(const std::string& name, std::string_view text);

void RemoveFile(const std::string& name);
