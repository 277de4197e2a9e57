#include "frame/RegistrationAuto.h"

#include "NeltCtrl.h"
#include "frame/ClassTableAuto.h"
#include "frame/ModuleAuto.h"

#include <oaidl.h>
#include <olectl.h>
#include <string>
#include <vector>

namespace {

std::wstring GuidText(const GUID& guid) {
    wchar_t text[40]{};
    ::StringFromGUID2(guid, text, 40);
    return text;
}

struct Value {
    std::wstring key;     // below HKEY_CLASSES_ROOT
    const wchar_t* name;  // null = the key's default value
    std::wstring text;
    bool hasText = true;
};

// Everything that one class has in the registry, a key always before the keys below it.
std::vector<Value> ValuesOf(const CreatableClass& row) {
    const std::wstring clsid = GuidText(*row.clsid);
    const std::wstring independent = row.progId;
    const std::wstring versioned = independent + L".1";
    const std::wstring home = L"CLSID\\" + clsid;
    return {
        {versioned, nullptr, row.description},
        {versioned + L"\\CLSID", nullptr, clsid},
        {independent, nullptr, row.description},
        {independent + L"\\CLSID", nullptr, clsid},
        {independent + L"\\CurVer", nullptr, versioned},
        {home, nullptr, row.description},
        {home + L"\\ProgID", nullptr, versioned},
        {home + L"\\VersionIndependentProgID", nullptr, independent},
        {home + L"\\Programmable", nullptr, {}, false},
        {home + L"\\InprocServer32", nullptr, Module::Get().Path()},
        {home + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {home + L"\\TypeLib", nullptr, GuidText(LIBID_NeltCtrl)},
    };
}

bool Write(const Value& value) {
    HKEY key = nullptr;
    if (::RegCreateKeyExW(HKEY_CLASSES_ROOT, value.key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                          nullptr) != ERROR_SUCCESS) {
        return false;
    }
    LSTATUS outcome = ERROR_SUCCESS;
    if (value.hasText) {
        outcome =
            ::RegSetValueExW(key, value.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.text.c_str()),
                             static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t)));
    }
    ::RegCloseKey(key);
    return outcome == ERROR_SUCCESS;
}

}  // namespace

HRESULT RegisterServer() {
    for (const CreatableClass& row : CreatableClasses()) {
        for (const Value& value : ValuesOf(row)) {
            if (!Write(value)) return SELFREG_E_CLASS;
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
        for (const std::wstring& tree : {row.progId + std::wstring(L".1"), std::wstring(row.progId),
                                         L"CLSID\\" + GuidText(*row.clsid)}) {
            const LSTATUS outcome = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, tree.c_str());
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
