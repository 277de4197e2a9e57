// Registers, unregisters and registers again, comparing the registry; leaves the module registered for other
// tests.
#include "Com.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace {

using Snapshot = std::map<std::wstring, std::wstring>;

void Collect(HKEY root, const std::wstring& path, Snapshot& found) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    found[path] = L"";
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD nameSize = 256;
        BYTE data[2048];
        DWORD dataSize = sizeof data;
        DWORD type = 0;
        if (::RegEnumValueW(key, i, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS) break;
        found[path + L"@" + name] = type == REG_SZ ? reinterpret_cast<const wchar_t*>(data) : L"?";
    }
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD nameSize = 256;
        if (::RegEnumKeyExW(key, i, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        Collect(root, path + L"\\" + name, found);
    }
    ::RegCloseKey(key);
}

// Every ProgID of the component, its classes and its type library; interfaces come and go with the type
// library.
Snapshot Registry() {
    Snapshot found;
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD size = 256;
        if (::RegEnumKeyExW(HKEY_CLASSES_ROOT, i, name, &size, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        if (std::wstring(name).starts_with(L"Quorvane.")) Collect(HKEY_CLASSES_ROOT, name, found);
    }
    HKEY classes = nullptr;
    ::RegOpenKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, KEY_READ, &classes);
    for (DWORD i = 0;; ++i) {
        wchar_t name[256];
        DWORD size = 256;
        if (::RegEnumKeyExW(classes, i, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        wchar_t text[512] = L"";
        DWORD bytes = sizeof text;
        const std::wstring path = std::wstring(L"CLSID\\") + name;
        ::RegGetValueW(HKEY_CLASSES_ROOT, (path + L"\\TypeLib").c_str(), nullptr, RRF_RT_REG_SZ, nullptr,
                       text, &bytes);
        if (std::wstring(text) == L"{52FC26A8-E26C-4C45-A617-BD173EF0AE9C}")
            Collect(HKEY_CLASSES_ROOT, path, found);
    }
    ::RegCloseKey(classes);
    Collect(HKEY_CLASSES_ROOT, L"TypeLib\\{52FC26A8-E26C-4C45-A617-BD173EF0AE9C}", found);
    Collect(HKEY_CLASSES_ROOT, L"Interface\\{74A9B740-4199-41D8-AF10-5D9ECB68980C}", found);
    return found;
}

struct ClassRow {
    const wchar_t* name;
    const wchar_t* progId;
    const wchar_t* clsid;
};

constexpr ClassRow kClasses[] = {
    {L"SmsConstants", L"Quorvane.SmsConstants", L"{D59B5767-F7FA-47B7-A1D3-816934964EC4}"},
    {L"SmsMessage", L"Quorvane.SmsMessage", L"{6900ABDD-A93C-430F-9939-A0477D4D6F4E}"},
    {L"SmsDeliveryStatus", L"Quorvane.SmsDeliveryReport", L"{E3C1E60A-87B3-4178-BB93-CCB8D6AC59F8}"},
    {L"SmsProtocolGsm", L"Quorvane.SmsProtocolGsm", L"{30F256C0-EE6E-4C57-A475-E3E81236119F}"},
    {L"SmsProtocolSmpp", L"Quorvane.SmsProtocolSmpp", L"{0B3C73A0-D209-465A-B6C4-9B6AC9DCC424}"},
    {L"SmsDataWapPush", L"Quorvane.SmsDataWapPush", L"{EF74EFF2-4F98-464A-9F73-CF6D77D9C954}"},
    {L"SmsDataWapBookmark", L"Quorvane.SmsDataWapBookmark", L"{ED494BC8-222A-4716-A46D-14F72F02CB89}"},
    {L"SmsDataMmsNotification", L"Quorvane.SmsDataMmsNotification",
     L"{4868BE0E-AA1B-4289-8FFB-CC75275D9822}"},
    {L"SmsDatavCard", L"Quorvane.SmsDatavCard", L"{4368F874-0EBD-4816-8915-F340F7150B95}"},
    {L"SmsProtocolHttp", L"Quorvane.SmsProtocolHttp", L"{0F81C972-915E-41C7-B881-667FD2629300}"},
    {L"SmsProtocolDialup", L"Quorvane.SmsProtocolDialup", L"{7FE9716E-6120-433C-B7C5-F42F4805B6C2}"},
    {L"PagerMessage", L"Quorvane.PagerMessage", L"{A4ECB249-089A-458B-B1DC-AFA3F6DFD691}"},
    {L"PagerProtocolSnpp", L"Quorvane.PagerProtocolSnpp", L"{69AD3E44-38BB-49E2-A03F-2BA71444BDF5}"},
    {L"MmsMessage", L"Quorvane.MmsMessage", L"{968295DF-EE56-433A-99A8-64B47C5FF613}"},
    {L"MmsSlide", L"Quorvane.MmsSlide", L"{43BFDCA2-0801-4A5F-897F-DA987DD62EF3}"},
    {L"MmsPermission", L"Quorvane.MmsPermission", L"{D3458AB2-3485-4E68-95CB-49EEA9566B35}"},
    {L"MmsConstants", L"Quorvane.MmsConstants", L"{51B8A8E6-CC2F-4160-8645-E0B264659493}"},
    {L"MmsProtocolMm4", L"Quorvane.MmsProtocolMm4", L"{BC79F6EF-F0D4-45A6-AB37-44A9ED6B084A}"},
    {L"MmsProtocolMm7", L"Quorvane.MmsProtocolMm7", L"{368A6DD4-34BD-44F7-BE1D-FD282B3112F1}"},
    {L"MmsProtocolMm1", L"Quorvane.MmsProtocolMm1", L"{F0589DF4-1745-4437-B41A-F72B780410AF}"},
};

Snapshot Expected(const std::wstring& module) {
    Snapshot all;
    for (const ClassRow& row : kClasses) {
        const std::wstring independent = row.progId;
        const std::wstring versioned = independent + L".1";
        const std::wstring description = std::wstring(row.name) + L" Class";
        const std::wstring home = std::wstring(L"CLSID\\") + row.clsid;
        for (const std::wstring& key :
             {versioned, versioned + L"\\CLSID", independent, independent + L"\\CLSID",
              independent + L"\\CurVer", home, home + L"\\ProgID", home + L"\\VersionIndependentProgID",
              home + L"\\Programmable", home + L"\\InprocServer32", home + L"\\TypeLib"}) {
            all[key] = L"";
        }
        all[versioned + L"@"] = description;
        all[versioned + L"\\CLSID@"] = row.clsid;
        all[independent + L"@"] = description;
        all[independent + L"\\CLSID@"] = row.clsid;
        all[independent + L"\\CurVer@"] = versioned;
        all[home + L"@"] = description;
        all[home + L"\\ProgID@"] = versioned;
        all[home + L"\\VersionIndependentProgID@"] = independent;
        all[home + L"\\InprocServer32@"] = module;
        all[home + L"\\InprocServer32@ThreadingModel"] = L"Apartment";
        all[home + L"\\TypeLib@"] = L"{52FC26A8-E26C-4C45-A617-BD173EF0AE9C}";
    }
    return all;
}

Snapshot WithoutTypeLibrary(Snapshot all) {
    std::erase_if(all, [](const auto& entry) {
        return entry.first.starts_with(L"TypeLib\\") || entry.first.starts_with(L"Interface\\");
    });
    return all;
}

TEST(Registration, WritesAndRemovesExactlyItsKeys) {
    HMODULE module = ::LoadLibraryW(L"NeltCtrlx64.dll");
    ASSERT_NE(module, nullptr);
    wchar_t path[1024];
    ::GetModuleFileNameW(module, path, 1024);
    using Entry = HRESULT(WINAPI*)();
    const auto add =
        reinterpret_cast<Entry>(reinterpret_cast<void*>(::GetProcAddress(module, "DllRegisterServer")));
    const auto remove =
        reinterpret_cast<Entry>(reinterpret_cast<void*>(::GetProcAddress(module, "DllUnregisterServer")));

    HKEY added = nullptr;
    EXPECT_EQ(remove(), S_OK);  // also when nothing is registered
    EXPECT_EQ(Registry(), Snapshot{});
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(add(), S_OK);
        const Snapshot now = Registry();
        EXPECT_EQ(WithoutTypeLibrary(now), Expected(path));
        EXPECT_TRUE(now.contains(L"TypeLib\\{52FC26A8-E26C-4C45-A617-BD173EF0AE9C}\\5.3\\0\\win64"));
        EXPECT_TRUE(now.contains(L"Interface\\{74A9B740-4199-41D8-AF10-5D9ECB68980C}\\TypeLib"));
        // What others have put below our keys goes with them; what lies beside stays.
        for (const wchar_t* key :
             {L"CLSID\\{6900ABDD-A93C-430F-9939-A0477D4D6F4E}\\Implemented Categories\\{0}",
              L"Quorvane.SmsMessage\\Extra", L"QuorvaneBeside"}) {
            ::RegCreateKeyW(HKEY_CLASSES_ROOT, key, &added);
            ::RegCloseKey(added);
        }
        ASSERT_EQ(remove(), S_OK);
        EXPECT_EQ(Registry(), Snapshot{});
        EXPECT_EQ(::RegDeleteKeyW(HKEY_CLASSES_ROOT, L"QuorvaneBeside"), ERROR_SUCCESS);
    }
    ASSERT_EQ(add(), S_OK);
    ::FreeLibrary(module);
}

}  // namespace
