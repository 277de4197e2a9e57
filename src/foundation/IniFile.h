// A text file of sections and lines ("[Init]", "NextEntry=7"), as the activity file and provider files use.
// Section and key names compare without case. A file that cannot be read is empty.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class IniFile {
  public:
    // The contents of the file as they are now; damaged files give what can be read. At most 64 MiB are read.
    static IniFile Load(const std::string& name);

    // Whether the file can be opened for reading.
    static bool Exists(const std::string& name);

    // Writes all sections back; false when the file cannot be written.
    [[nodiscard]] bool Save(const std::string& name) const;
    // As Save, but the old file stays whole until the new one is.
    [[nodiscard]] bool Replace(const std::string& name) const;

    const std::vector<std::string>& Lines(std::string_view section) const;
    void SetLines(std::string_view section, std::vector<std::string> lines);

    bool Has(std::string_view section, std::string_view key) const { return Value(section, key).has_value(); }
    std::string Text(std::string_view section, std::string_view key, std::string_view fallback = {}) const;
    std::uint32_t Number(std::string_view section, std::string_view key, std::uint32_t fallback = 0) const;
    void SetText(std::string_view section, std::string_view key, std::string_view value);

  private:
    struct Section {
        std::string name;  // empty: what stands before all sections
        std::vector<std::string> lines;
    };
    Section& Find(std::string_view name);
    std::string Whole() const;
    std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

    std::vector<Section> sections_;
};
