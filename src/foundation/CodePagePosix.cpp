// The native build's ANSI code page is the Western one.
#include "foundation/CodePage.h"
#include "foundation/Windows1252.h"

std::string codepage::ToAnsi(std::u16string_view text) { return windows1252::Encode(text); }
std::u16string codepage::FromAnsi(std::string_view text) { return windows1252::Decode(text); }
