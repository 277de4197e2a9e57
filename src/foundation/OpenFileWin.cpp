#include "foundation/CodePage.h"
#include "foundation/OpenFile.h"

#include <windows.h>

namespace {

// The path from its root in the form that may be longer than MAX_PATH.
std::wstring LongForm(const wchar_t* name) {
    std::wstring path(::GetFullPathNameW(name, 0, nullptr, nullptr), L'\0');
    path.resize(::GetFullPathNameW(name, static_cast<DWORD>(path.size()), path.data(), nullptr));
    return path.starts_with(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}

}  // namespace

std::FILE* platform::OpenNamedFile(const std::string& name, const char* mode) {
    const std::u16string wide = FromAnsi(name);
    const auto* const path = reinterpret_cast<const wchar_t*>(wide.c_str());
    const std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
    const bool isLong = wide.size() >= MAX_PATH - 1 && !wide.starts_with(u"\\\\?\\");
    return ::_wfopen(isLong ? LongForm(path).c_str() : path, wideMode.c_str());
}
