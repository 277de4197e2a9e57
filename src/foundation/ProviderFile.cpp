#include "foundation/ProviderFile.h"

#include "foundation/IniFile.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>

namespace {

using Access = ProviderRow::Access;

std::optional<bool> FlagIn(std::string_view text) {
    if (const auto number = FindInt(text)) return *number != 0;
    if (EqualNoCase(text, "true") || EqualNoCase(text, "yes")) return true;
    if (EqualNoCase(text, "false") || EqualNoCase(text, "no")) return false;
    return std::nullopt;
}

// Writes a text from the file into a field; a number or flag that it does not hold leaves the field.
struct Take {
    const std::string& text;
    void operator()(std::string* field) const { *field = text; }
    void operator()(std::int32_t* field) const { *field = FindInt(text).value_or(*field); }
    void operator()(bool* field) const { *field = FlagIn(text).value_or(*field); }
    void operator()(const Access& access) const { access.set(text); }
};

// The text of a field for the file.
struct Give {
    std::string operator()(const std::string* field) const { return *field; }
    std::string operator()(const std::int32_t* field) const { return std::to_string(*field); }
    std::string operator()(const bool* field) const { return *field ? "1" : "0"; }
    std::string operator()(const Access& access) const { return access.get(); }
};

bool IsQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
}

// A value as one line: what would end it is a blank, and blanks at an end stand in quotes, which the profile
// functions of Windows take off as well.
std::string Line(std::string_view text) {
    const std::string value = OneLine(text);
    const bool needsQuotes = Trim(value).size() != value.size() || IsQuoted(value);
    return needsQuotes ? '"' + value + '"' : value;
}

std::string WithoutQuotes(const std::string& value) {
    return IsQuoted(value) ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

ResultCode LoadProviderFile(const std::string& file, std::span<const ProviderRow> rows) {
    if (!IniFile::Exists(file)) return result::ConfigNotFound;
    const IniFile ini = IniFile::Load(file);
    const auto isEmpty = [&ini](const ProviderRow& row) { return ini.Lines(row.section).empty(); };
    if (std::ranges::all_of(rows, isEmpty)) return result::ConfigCorrupt;
    for (const ProviderRow& row : rows) {
        if (!ini.Has(row.section, row.key)) continue;
        std::visit(Take{WithoutQuotes(ini.Text(row.section, row.key))}, row.field);
    }
    return result::Success;
}

ResultCode SaveProviderFile(const std::string& file, std::span<const ProviderRow> rows) {
    if (file.empty()) return result::ConfigSaveFailed;
    IniFile ini = IniFile::Load(file);
    for (const ProviderRow& row : rows) {
        ini.SetText(row.section, row.key, Line(std::visit(Give{}, row.field)));
    }
    return ini.Replace(file) ? result::Success : result::ConfigSaveFailed;
}
