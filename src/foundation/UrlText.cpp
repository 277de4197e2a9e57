#include "foundation/UrlText.h"

#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t kEncodedSize = 3;

constexpr bool IsUnreserved(char c) {
    const bool isLetter = UpperChar(c) >= 'A' && UpperChar(c) <= 'Z';
    return isLetter || IsDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

// What each octet becomes, and how much of that counts: copied whole, its size too, so that the loop has no
// branches and stores once.
struct Form {
    std::array<char, kEncodedSize> text;
    std::uint8_t size;
};
constexpr auto kForms = [] {
    std::array<Form, 256> forms{};
    for (std::size_t octet = 0; octet < forms.size(); ++octet) {
        const char c = static_cast<char>(octet);
        const auto& pair = hex::kPairs[octet];
        forms[octet] = IsUnreserved(c) ? Form{{c, 0, 0}, 1} : Form{{'%', pair[0], pair[1]}, kEncodedSize};
    }
    return forms;
}();

}  // namespace

void url::AppendEncoded(std::string& text, std::string_view octets) {
    const std::size_t start = text.size();
    text.resize(start + kEncodedSize * octets.size() + sizeof(Form) - kEncodedSize);
    char* out = text.data() + start;
    for (const char c : octets) {
        const Form& form = kForms[static_cast<std::uint8_t>(c)];
        std::memcpy(out, &form, sizeof form);
        out += form.size;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}
