// Whole text files. Line feeds are written as the platform's line ends and read back as line feeds. A name
// with a zero octet names no file.
#pragma once
#include "foundation/Clock.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// The file's text, at most `limit` octets; nothing when it cannot be opened.
std::optional<std::string> ReadTextFile(const std::string& name, std::size_t limit);

// Creates or replaces the file's contents; false when it cannot be written.
[[nodiscard]] bool WriteTextFile(const std::string& name, std::string_view text);

// Takes the pieces of a text in order; false when it can take no more.
using TextSink = std::function<bool(std::string_view)>;

// Writes what `produce` gives so that the old file stays whole until the new one is: beside it first, safe on
// the disk, then in its place. A reader that holds the old file is waited for a little while and then written
// under; so is a file that none can lie beside. False when the file cannot be written.
[[nodiscard]] bool ReplaceTextFile(const std::string& name,
                                   const std::function<bool(const TextSink&)>& produce, Clock& clock);

inline constexpr std::size_t kTextPiece = std::size_t{1} << 18;

// Gives a file of any size piece by piece; false when it cannot be opened.
[[nodiscard]] bool ReadTextPieces(const std::string& name, const std::function<void(std::string_view)>& take,
                                  std::size_t pieceSize = kTextPiece);

// Appends to the file, creating it when missing; false when it cannot be written.
bool AppendTextFile(const std::string& name, std::string_view text);

void RemoveFile(const std::string& name);
