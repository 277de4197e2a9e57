#include "foundation/IniFile.h"

#include "foundation/Text.h"
#include "foundation/TextFile.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t kMaximumSize = std::size_t{64} << 20;

// The value part when the line is `key=value`.
std::optional<std::string_view> ValueOf(std::string_view line, std::string_view key) {
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || !EqualNoCase(Trim(line.substr(0, sign)), key)) return std::nullopt;
    return Trim(line.substr(sign + 1));
}

}  // namespace

IniFile IniFile::Load(const std::string& name) {
    IniFile ini;
    const auto text = ReadTextFile(name, kMaximumSize);
    if (!text) return ini;
    Section* current = nullptr;
    for (const std::string_view raw : Split(*text, "\n")) {
        const std::string_view line = Trim(raw);
        if (line.empty()) continue;
        if (line.front() == '[' && line.back() == ']') {
            current = &ini.Find(line.substr(1, line.size() - 2));
        } else {
            if (current == nullptr) current = &ini.Find({});
            current->lines.emplace_back(line);
        }
    }
    return ini;
}

bool IniFile::Exists(const std::string& name) { return ReadTextFile(name, 1).has_value(); }

std::string IniFile::Whole() const {
    std::string text;
    for (const Section& section : sections_) {
        if (!section.name.empty()) text.append("[").append(section.name).append("]\n");
        for (const std::string& line : section.lines) text.append(line).append("\n");
    }
    return text;
}

bool IniFile::Save(const std::string& name) const { return WriteTextFile(name, Whole()); }

bool IniFile::Replace(const std::string& name) const {
    const std::string text = Whole();
    return ReplaceTextFile(
        name, [&text](const TextSink& sink) { return sink(text); }, SystemClock());
}

IniFile::Section& IniFile::Find(std::string_view name) {
    const auto hit =
        std::ranges::find_if(sections_, [&](const Section& s) { return EqualNoCase(s.name, name); });
    return hit != sections_.end() ? *hit : sections_.emplace_back(Section{std::string(name), {}});
}

const std::vector<std::string>& IniFile::Lines(std::string_view section) const {
    static const std::vector<std::string> kNone;
    const auto hit =
        std::ranges::find_if(sections_, [&](const Section& s) { return EqualNoCase(s.name, section); });
    return hit != sections_.end() ? hit->lines : kNone;
}

void IniFile::SetLines(std::string_view section, std::vector<std::string> lines) {
    Find(section).lines = std::move(lines);
}

std::optional<std::string_view> IniFile::Value(std::string_view section, std::string_view key) const {
    for (const std::string& line : Lines(section)) {
        if (const auto value = ValueOf(line, key)) return value;
    }
    return std::nullopt;
}

std::string IniFile::Text(std::string_view section, std::string_view key, std::string_view fallback) const {
    return std::string(Value(section, key).value_or(fallback));
}

std::uint32_t IniFile::Number(std::string_view section, std::string_view key, std::uint32_t fallback) const {
    const std::string text = Text(section, key);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} ? number : fallback;
}

void IniFile::SetText(std::string_view section, std::string_view key, std::string_view value) {
    std::string line = std::string(key) + "=" + std::string(value);
    Section& found = Find(section);
    for (std::string& old : found.lines) {
        if (ValueOf(old, key)) {
            old = std::move(line);
            return;
        }
    }
    found.lines.push_back(std::move(line));
}
