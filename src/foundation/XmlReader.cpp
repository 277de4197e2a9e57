#include "foundation/XmlReader.h"

#include "foundation/Text.h"
#include "foundation/Utf8.h"
#include "foundation/Windows1252.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace {

using xml::Reader;

constexpr std::string_view kComment = "<!--";
constexpr std::string_view kCData = "<![CDATA[";
constexpr std::string_view kDocumentType = "<!DOCTYPE";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr bool IsBlank(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

// What a name may hold; every character beyond ASCII counts.
constexpr auto kInNames = [] {
    std::array<bool, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        const auto letter = static_cast<char>(c | 0x20U);
        table[c] = c >= 0x80 || (letter >= 'a' && letter <= 'z' && c >= 'A') || (c >= '0' && c <= '9') ||
                   c == '.' || c == '-' || c == '_' || c == ':';
    }
    return table;
}();
constexpr bool IsInName(char c) { return kInNames[static_cast<std::uint8_t>(c)]; }
constexpr bool IsNameStart(char c) { return IsInName(c) && !IsDigit(c) && c != '-' && c != '.'; }

// --- character sets

std::string FromLatin1(std::string_view octets) {
    std::u16string wide(octets.size(), 0);
    std::ranges::transform(octets, wide.begin(), [](char c) { return static_cast<std::uint8_t>(c); });
    return ToUtf8(wide);
}
std::string FromWindows1252(std::string_view octets) { return ToUtf8(windows1252::Decode(octets)); }
std::string FromWhatIsUtf8(std::string_view octets) { return ToUtf8(FromUtf8(octets)); }

std::string FromUtf16(std::string_view octets, bool isBigEndian) {
    std::u16string wide(octets.size() / 2, 0);
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const auto high = static_cast<std::uint8_t>(octets[2 * i + (isBigEndian ? 0 : 1)]);
        const auto low = static_cast<std::uint8_t>(octets[2 * i + (isBigEndian ? 1 : 0)]);
        wide[i] = static_cast<char16_t>(high << 8 | low);
    }
    return ToUtf8(wide);
}

struct DeclaredSet {
    std::string_view name;
    std::string (*toUtf8)(std::string_view octets);
};
constexpr auto kDeclaredSets = std::to_array<DeclaredSet>({
    {"", FromWhatIsUtf8},
    {"UTF-8", FromWhatIsUtf8},
    {"UTF8", FromWhatIsUtf8},
    {"US-ASCII", FromWhatIsUtf8},
    {"ASCII", FromWhatIsUtf8},
    {"UTF-16", FromWhatIsUtf8},  // whoever writes that in single octets has converted the document since
    {"ISO-8859-1", FromLatin1},
    {"LATIN1", FromLatin1},
    {"WINDOWS-1252", FromWindows1252},
});

// The encoding that the document's first line names; empty when it names none.
std::string_view DeclaredEncoding(std::string_view document) {
    constexpr std::string_view kStart = "<?xml";
    constexpr std::string_view kEncoding = "encoding";
    if (!document.starts_with(kStart)) return {};
    const std::size_t end = document.find("?>");
    std::string_view line = document.substr(0, end);
    const std::size_t at = line.find(kEncoding);
    if (end == std::string_view::npos || at == std::string_view::npos) return {};
    line.remove_prefix(at + kEncoding.size());
    const std::size_t quote = line.find_first_of("\"'");
    if (quote == std::string_view::npos) return {};
    const std::string_view name = line.substr(quote + 1);
    return name.substr(0, name.find(line[quote]));
}

bool IsAscii(std::string_view octets) {
    std::uint8_t all = 0;
    for (const char c : octets) all = static_cast<std::uint8_t>(all | static_cast<std::uint8_t>(c));
    return all < 0x80;
}

// --- entities

constexpr bool IsCharacter(std::uint32_t c) {
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// "#65" or "#x41".
std::optional<char32_t> NumberedCharacter(std::string_view name) {
    name.remove_prefix(1);
    const bool isHex = name.starts_with('x');
    if (isHex) name.remove_prefix(1);
    std::uint32_t number = 0;
    const char* const end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, number, isHex ? 16 : 10);
    if (read.ec != std::errc() || read.ptr != end || !IsCharacter(number)) return {};
    return number;
}

std::optional<char32_t> CharacterOf(std::string_view name) {
    struct Row {
        std::string_view name;
        char character;
    };
    constexpr auto kRows =
        std::to_array<Row>({{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}});
    if (name.starts_with('#')) return NumberedCharacter(name);
    const auto* const row = std::ranges::find(kRows, name, &Row::name);
    if (row == kRows.end()) return {};
    return static_cast<char32_t>(row->character);
}

// Puts the characters in for the entities, and one line feed for each line end. False for an entity that is
// none.
bool Resolve(std::string_view raw, std::string& out) {
    out.clear();
    while (!raw.empty()) {
        const std::size_t plain = std::min(raw.find_first_of("&\r"), raw.size());
        out.append(raw.substr(0, plain));
        raw.remove_prefix(plain);
        if (raw.empty()) break;
        if (raw.front() == '\r') {
            raw.remove_prefix(raw.starts_with("\r\n") ? 2 : 1);
            out += '\n';
            continue;
        }
        const std::size_t end = raw.find(';');
        const auto character =
            end != std::string_view::npos ? CharacterOf(raw.substr(1, end - 1)) : std::nullopt;
        if (!character) return false;
        AppendUtf8(out, *character);
        raw.remove_prefix(end + 1);
    }
    return true;
}

}  // namespace

Reader::Reader(std::string_view document, Limits limits) : limits_(limits) {
    if (document.size() > limits_.size) {
        Fail(Fault::kTooLarge);
        return;
    }
    TakeCharacters(document);
}

// From here on the document is UTF-8.
void Reader::TakeCharacters(std::string_view document) {
    if (document.starts_with("\xFE\xFF") || document.starts_with("\xFF\xFE")) {
        converted_ = FromUtf16(document.substr(2), document.front() == '\xFE');
        document_ = converted_;
        return;
    }
    const bool hasMark =
        document.starts_with(kByteOrderMark) || (!document.empty() && kByteOrderMark.starts_with(document));
    if (hasMark) document.remove_prefix(std::min(document.size(), kByteOrderMark.size()));
    document_ = document;
    if (IsAscii(document)) return;  // the same in every set that is written in octets
    const std::string declared = Upper(DeclaredEncoding(document));
    const auto* const set = std::ranges::find(kDeclaredSets, declared, &DeclaredSet::name);
    if (set == kDeclaredSets.end() && !hasMark) {
        Fail(Fault::kEncoding);
        return;
    }
    const auto convert = hasMark ? FromWhatIsUtf8 : set->toUtf8;
    if (convert == FromWhatIsUtf8 && IsUtf8(document)) return;
    converted_ = convert(document);
    document_ = converted_;
}

bool Reader::Fail(Fault fault) {
    fault_ = fault;
    return false;
}

Reader::Token Reader::Next() {
    if (fault_ != Fault::kNone) return Token::kFault;
    if (endIsDue_) {
        endIsDue_ = false;
        open_.pop_back();
        return Token::kEnd;
    }
    while (at_ < document_.size()) {
        const std::optional<Token> piece = Piece();
        if (fault_ != Fault::kNone) return Token::kFault;
        if (piece) return *piece;
    }
    if (hadRoot_ && open_.empty()) return Token::kDone;
    Fail(Fault::kCut);
    return Token::kFault;
}

// The piece that is next, nothing for what is passed over. A failure counts more than what is given.
std::optional<Reader::Token> Reader::Piece() {
    if (document_[at_] != '<') {
        TakeText();
        return open_.empty() ? std::nullopt : std::optional(Token::kText);
    }
    const std::string_view rest = document_.substr(at_);
    if (rest.size() == 1) {
        Fail(Fault::kCut);
        return {};
    }
    if (rest.starts_with("</")) {
        TakeEnd();
        return Token::kEnd;
    }
    if (rest.starts_with("<?")) {
        SkipPast(2, "?>");
        return {};
    }
    if (!rest.starts_with("<!")) {
        TakeStart();
        return Token::kStart;
    }
    if (rest.starts_with(kComment)) {
        SkipPast(kComment.size(), "-->");
        return {};
    }
    if (rest.starts_with(kCData)) {
        TakeCData();
        return Token::kText;
    }
    if (rest.starts_with(kDocumentType)) {
        TakeDocumentType();
        return {};
    }
    CutOrWrong(rest);
    return {};
}

// Of what begins with "<!" but is nothing that is known.
bool Reader::CutOrWrong(std::string_view rest) {
    const bool isCut =
        kComment.starts_with(rest) || kCData.starts_with(rest) || kDocumentType.starts_with(rest);
    return Fail(isCut ? Fault::kCut : Fault::kSyntax);
}

// --- texts

bool Reader::TakeText() {
    const std::size_t end = document_.find('<', at_);
    const std::string_view raw = document_.substr(at_, end - at_);
    if (open_.empty()) {
        if (!std::ranges::all_of(raw, IsBlank)) return Fail(Fault::kSyntax);
    } else if (end == std::string_view::npos) {
        return Fail(Fault::kCut);
    } else if (raw.find('&') != std::string_view::npos) {
        if (!Resolve(raw, resolved_)) return Fail(Fault::kEntity);
        text_ = resolved_;
    } else {
        SetText(raw);
    }
    at_ += raw.size();
    return true;
}

bool Reader::TakeCData() {
    if (open_.empty()) return Fail(Fault::kSyntax);
    const std::size_t begin = at_ + kCData.size();
    if (!SkipPast(kCData.size(), "]]>")) return false;
    return SetText(document_.substr(begin, at_ - 3 - begin));
}

// A text without entities: only its line ends are made one character.
bool Reader::SetText(std::string_view raw) {
    text_ = raw;
    if (raw.find('\r') == std::string_view::npos) return true;
    resolved_ = raw;
    ReplaceAll(resolved_, "\r\n", "\n");
    std::ranges::replace(resolved_, '\r', '\n');
    text_ = resolved_;
    return true;
}

// --- elements

bool Reader::TakeStart() {
    if (open_.empty() && hadRoot_) return Fail(Fault::kSyntax);
    if (open_.size() == limits_.depth) return Fail(Fault::kTooDeep);
    ++at_;
    attributes_.clear();
    if (!TakeName(name_)) return false;
    while (true) {
        const bool hadBlanks = SkipBlanks();
        if (at_ == document_.size()) return Fail(Fault::kCut);
        if (document_[at_] == '>' || document_[at_] == '/') break;
        if (!hadBlanks) return Fail(Fault::kSyntax);
        if (!TakeAttribute()) return false;
    }
    endIsDue_ = document_[at_] == '/';
    if (endIsDue_) ++at_;
    hadRoot_ = true;
    open_.push_back(name_);
    return TakeClosing();
}

bool Reader::TakeAttribute() {
    if (attributes_.size() == limits_.attributes) return Fail(Fault::kTooMany);
    RawAttribute attribute;
    if (!TakeName(attribute.name)) return false;
    SkipBlanks();
    if (at_ == document_.size()) return Fail(Fault::kCut);
    if (document_[at_++] != '=') return Fail(Fault::kSyntax);
    SkipBlanks();
    if (at_ == document_.size()) return Fail(Fault::kCut);
    const char quote = document_[at_++];
    if (quote != '"' && quote != '\'') return Fail(Fault::kSyntax);
    const std::size_t end = document_.find(quote, at_);
    if (end == std::string_view::npos) return Fail(Fault::kCut);
    attribute.value = document_.substr(at_, end - at_);
    at_ = end + 1;
    const bool isRepeated =
        std::ranges::find(attributes_, attribute.name, &RawAttribute::name) != attributes_.end();
    if (isRepeated || attribute.value.find('<') != std::string_view::npos) return Fail(Fault::kSyntax);
    const bool hasEntities = attribute.value.find('&') != std::string_view::npos;
    if (hasEntities && !Resolve(attribute.value, resolved_)) return Fail(Fault::kEntity);
    attributes_.push_back(attribute);
    return true;
}

bool Reader::TakeEnd() {
    at_ += 2;
    if (!TakeName(name_)) return false;
    SkipBlanks();
    if (at_ == document_.size()) return Fail(Fault::kCut);
    if (open_.empty() || open_.back() != name_) return Fail(Fault::kSyntax);
    open_.pop_back();
    return TakeClosing();
}

bool Reader::TakeClosing() {
    if (at_ == document_.size()) return Fail(Fault::kCut);
    return document_[at_++] == '>' || Fail(Fault::kSyntax);
}

bool Reader::TakeName(std::string_view& name) {
    if (at_ == document_.size()) return Fail(Fault::kCut);
    if (!IsNameStart(document_[at_])) return Fail(Fault::kSyntax);
    const std::size_t begin = at_;
    while (at_ < document_.size() && IsInName(document_[at_])) ++at_;
    name = document_.substr(begin, at_ - begin);
    return true;
}

// --- what is passed over

// Whether there were any.
bool Reader::SkipBlanks() {
    const std::size_t begin = at_;
    while (at_ < document_.size() && IsBlank(document_[at_])) ++at_;
    return at_ > begin;
}

bool Reader::SkipPast(std::size_t opening, std::string_view end) {
    const std::size_t found = document_.find(end, at_ + opening);
    if (found == std::string_view::npos) return Fail(Fault::kCut);
    at_ = found + end.size();
    return true;
}

// With the declarations between its brackets, among which ">" ends nothing; nor does it in quotes and
// comments.
bool Reader::TakeDocumentType() {
    if (hadRoot_ || hadType_) return Fail(Fault::kSyntax);
    hadType_ = true;
    bool isInside = false;
    at_ += kDocumentType.size();
    while (at_ < document_.size()) {
        const std::string_view rest = document_.substr(at_);
        const char c = rest.front();
        bool isWhole = true;
        if (rest.starts_with(kComment)) {
            isWhole = SkipPast(kComment.size(), "-->");
        } else if (rest.starts_with("<?")) {
            isWhole = SkipPast(2, "?>");
        } else if (c == '"' || c == '\'') {
            isWhole = SkipPast(1, rest.substr(0, 1));
        } else {
            ++at_;
            if (c == '>' && !isInside) return true;
            if (c == '[' || c == ']') isInside = c == '[';
        }
        if (!isWhole) return false;
    }
    return Fail(Fault::kCut);
}

// --- what a caller asks

std::string_view Reader::LocalName() const {
    const std::size_t colon = name_.rfind(':');
    return colon == std::string_view::npos ? name_ : name_.substr(colon + 1);
}

std::optional<std::string> Reader::Attribute(std::string_view name) const {
    const auto found = std::ranges::find(attributes_, name, &RawAttribute::name);
    if (found == attributes_.end()) return {};
    std::string value;
    (void)Resolve(found->value, value);  // was looked at when the attribute was taken
    return value;
}
