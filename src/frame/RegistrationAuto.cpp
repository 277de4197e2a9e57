#include "frame/RegistrationAuto.h"

#include "NeltCtrl.h"
#include "frame/ClassTableAuto.h"
#include "frame/ModuleAuto.h"

#include <oaidl.h>
#include <olectl.h>
#include <string>
#include <utility>

namespace {

// A row of the registration: what is below HKEY_CLASSES_ROOT for every class.
struct Value {
    const wchar_t* key;
    const wchar_t* name;  // empty = the key's own value
    const wchar_t* text;  // null = the key alone
};

constexpr Value kValues[] = {
#define REGISTRATION_VALUE(key, name, text) {L"" key, L"" name, L"" text},
#include "frame/RegistrationRows.inc"
#define REGISTRATION_KEY(key) {L"" key, nullptr, nullptr},
#include "frame/RegistrationRows.inc"
};

constexpr const wchar_t* kTrees[] = {
#define REGISTRATION_TREE(key) L"" key,
#include "frame/RegistrationRows.inc"
};

std::wstring GuidText(const GUID& guid) {
    wchar_t text[40]{};
    ::StringFromGUID2(guid, text, 40);
    return text;
}

std::wstring Fill(std::wstring row, const CreatableClass& of) {
    const std::pair<const wchar_t*, std::wstring> words[] = {{L"%PROGID%", of.progId},
                                                             {L"%DESCRIPTION%", of.description},
                                                             {L"%CLSID%", GuidText(*of.clsid)},
                                                             {L"%TYPELIB%", GuidText(LIBID_NeltCtrl)},
                                                             {L"%MODULE%", Module::Get().Path()}};
    for (const auto& [word, meaning] : words) {
        const std::size_t at = row.find(word);
        if (at != std::wstring::npos) row.replace(at, std::wcslen(word), meaning);
    }
    return row;
}

bool Write(const Value& value, const CreatableClass& of) {
    HKEY key = nullptr;
    if (::RegCreateKeyExW(HKEY_CLASSES_ROOT, Fill(value.key, of).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                          &key, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    LSTATUS outcome = ERROR_SUCCESS;
    if (value.text != nullptr) {
        const std::wstring text = Fill(value.text, of);
        outcome = ::RegSetValueExW(key, value.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                                   static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    ::RegCloseKey(key);
    return outcome == ERROR_SUCCESS;
}

}  // namespace

HRESULT RegisterServer() {
    for (const CreatableClass& row : CreatableClasses()) {
        for (const Value& value : kValues) {
            if (!Write(value, row)) return SELFREG_E_CLASS;
        }
    }
    ITypeLib* library = nullptr;
    std::wstring path = Module::Get().Path();
    if (FAILED(::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library))) return SELFREG_E_TYPELIB;
    const HRESULT registered = ::RegisterTypeLib(library, path.data(), nullptr);
    library->Release();
    return FAILED(registered) ? SELFREG_E_TYPELIB : S_OK;
}

// Whole trees, since others may have added keys below ours; nothing beside them.
HRESULT UnregisterServer() {
    bool removed = true;
    for (const CreatableClass& row : CreatableClasses()) {
        for (const wchar_t* tree : kTrees) {
            const LSTATUS outcome = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, Fill(tree, row).c_str());
            removed = removed && (outcome == ERROR_SUCCESS || outcome == ERROR_FILE_NOT_FOUND);
        }
    }
    const std::wstring library = L"TypeLib\\" + GuidText(LIBID_NeltCtrl);
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, library.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
        ::RegCloseKey(key);
        if (FAILED(::UnRegisterTypeLib(LIBID_NeltCtrl, 5, 3, LOCALE_NEUTRAL, SYS_WIN64)))
            return SELFREG_E_TYPELIB;
    }
    return removed ? S_OK : SELFREG_E_CLASS;
}
