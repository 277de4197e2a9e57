#include "foundation/CodePage.h"

namespace {

// Copies text that is ASCII throughout, which is the same in every ANSI code page; false when it is not.
template <class To, class From>
bool CopyAscii(From text, To& out) {
    out.resize(text.size());
    unsigned all = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        all |= static_cast<unsigned>(text[i]);
        out[i] = static_cast<typename To::value_type>(text[i]);
    }
    return (all & ~0x7FU) == 0;
}

}  // namespace

std::string ToAnsi(std::u16string_view text) {
    std::string out;
    return CopyAscii(text, out) ? out : codepage::ToAnsi(text);
}

std::u16string FromAnsi(std::string_view text) {
    std::u16string out;
    return CopyAscii(text, out) ? out : codepage::FromAnsi(text);
}
