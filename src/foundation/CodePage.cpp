#include "foundation/CodePage.h"

namespace {

template <class To, class From>
bool CopyText(From text, To& out) {
    out.resize(text.size());
    return CopyAscii(text, out.data());
}

}  // namespace

std::string ToAnsi(std::u16string_view text) {
    std::string out;
    return CopyText(text, out) ? out : codepage::ToAnsi(text);
}

std::u16string FromAnsi(std::string_view text) {
    std::u16string out;
    return CopyText(text, out) ? out : codepage::FromAnsi(text);
}
