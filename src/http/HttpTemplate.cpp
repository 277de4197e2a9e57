#include "http/HttpTemplate.h"

#include "foundation/Hex.h"
#include "foundation/Text.h"
#include "foundation/UrlText.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

void AppendLowOctets(const HttpFields& fields, std::string& out) {
    for (const char16_t c : fields.body) hex::Append(out, static_cast<std::uint8_t>(c));
}

void AppendUnits(const HttpFields& fields, std::string& out) {
    for (const char16_t c : fields.body) {
        hex::Append(out, static_cast<std::uint8_t>(c >> 8));
        hex::Append(out, static_cast<std::uint8_t>(c));
    }
}

void AppendData(const HttpFields& fields, std::string& out) {
    switch (fields.alphabet) {
        case Alphabet::kGsm:
            url::AppendEncoded(out, fields.text);
            break;
        case Alphabet::kOctets:
            AppendLowOctets(fields, out);
            break;
        case Alphabet::kUcs2:
            AppendUnits(fields, out);
            break;
    }
}

struct Placeholder {
    std::string_view name;  // without the percent signs around it
    void (*append)(const HttpFields& fields, std::string& out);
};

// In the order in which they are looked for.
constexpr auto kPlaceholders = std::to_array<Placeholder>({
    {"MESSAGEDATAHEX8", AppendLowOctets},
    {"MESSAGEDATAHEX16", AppendUnits},
    {"MESSAGERECIPIENT", [](const HttpFields& f, std::string& out) { url::AppendEncoded(out, f.recipient); }},
    {"MESSAGESENDER", [](const HttpFields& f, std::string& out) { url::AppendEncoded(out, f.sender); }},
    {"MESSAGEDATA", AppendData},
    {"MESSAGEDCS", [](const HttpFields& f, std::string& out) { out += std::to_string(f.dcs); }},
    {"MESSAGEDCSHEX", [](const HttpFields& f, std::string& out) { hex::Append(out, f.dcs); }},
    {"MESSAGEUDH", [](const HttpFields& f, std::string& out) { out += f.hasHeader ? '1' : '0'; }},
});

constexpr std::size_t kEncodedRoom = 2;  // octets for each of a message, on average

using Found = std::vector<const Placeholder*>;

// Which placeholder each text between two percent signs is, if any. It takes both signs.
Found PlaceholdersIn(const std::vector<std::string_view>& between) {
    Found found(between.size());
    for (const Placeholder& placeholder : kPlaceholders) {
        for (std::size_t i = 1; i + 1 < between.size(); ++i) {
            if (between[i] == placeholder.name && found[i - 1] == nullptr && found[i + 1] == nullptr) {
                found[i] = &placeholder;
            }
        }
    }
    return found;
}

std::string Fill(std::string_view text, const HttpFields& fields) {
    const std::vector<std::string_view> between = Split(text, "%");
    const Found found = PlaceholdersIn(between);
    std::string out;
    out.reserve(text.size() + kEncodedRoom * (fields.text.size() + fields.body.size()));
    out += between.front();
    for (std::size_t i = 1; i < between.size(); ++i) {
        if (found[i] != nullptr) {
            found[i]->append(fields, out);
        } else {
            if (found[i - 1] == nullptr) out += '%';
            out += between[i];
        }
    }
    return out;
}

}  // namespace

void MakeSlashesSingle(std::string& text) {
    if (text.find("//") == std::string::npos) return;
    const auto isRun = [](char a, char b) { return a == '/' && b == '/'; };
    text.erase(std::unique(text.begin(), text.end(), isRun), text.end());
}

HttpRequest FillHttpTemplate(std::string text, const HttpFields& fields) {
    MakeSlashesSingle(text);
    const std::string_view whole = text;
    const std::size_t end = whole.find('?');
    if (end == std::string_view::npos) return {Fill(whole, fields), {}};
    return {Fill(whole.substr(0, end), fields), Fill(whole.substr(end + 1), fields)};
}
