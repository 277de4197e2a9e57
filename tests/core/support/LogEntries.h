// What log and activity files hold, entry by entry, without times and numbers.
#pragma once
#include "foundation/Text.h"
#include "support/TemporaryFolder.h"

#include <string>
#include <string_view>
#include <vector>

// "[hh:mm:ss]  "
inline constexpr std::size_t kTimeSize = 12;

// Each without the line ends behind it.
inline std::vector<std::string> LogEntries(const std::string& file) {
    const std::string text = TemporaryFolder::Read(file);
    std::vector<std::string> entries;
    for (const std::string_view line : Split(text, "\n")) {
        const bool isFirst = line.starts_with('[') && line.substr(0, kTimeSize).ends_with("]  ");
        if (isFirst || entries.empty()) {
            entries.emplace_back(line.substr(isFirst ? kTimeSize : 0));
        } else {
            entries.back().append("\n").append(line);
        }
    }
    for (std::string& entry : entries) entry.erase(entry.find_last_not_of('\n') + 1);
    return entries;
}

inline std::vector<std::string> ActivityEntries(const std::string& file) {
    constexpr std::size_t kNumberSize = 9;  // "00000000|"
    const std::string text = TemporaryFolder::Read(file);
    std::vector<std::string> entries;
    for (const std::string_view line : Split(text, "\n")) {
        if (line.substr(0, kNumberSize).ends_with('|')) {
            entries.emplace_back(line.substr(kNumberSize + kTimeSize));
        }
    }
    return entries;
}

// What is to stand in the files that the mask names, `logmask`.
struct Entry {
    unsigned mask;
    std::string text;
};

inline std::vector<std::string> TextsWith(const std::vector<Entry>& entries, unsigned mask) {
    std::vector<std::string> texts;
    for (const Entry& entry : entries) {
        if ((entry.mask & mask) != 0) texts.push_back(entry.text);
    }
    return texts;
}

// The first of the wanted entries that does not stand behind the one before it; empty when all do.
inline std::string FirstMissing(const std::vector<std::string>& entries,
                                const std::vector<std::string>& wanted) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < entries.size() && found < wanted.size(); ++i) {
        if (entries[i] == wanted[found]) ++found;
    }
    return found < wanted.size() ? wanted[found] : std::string();
}
