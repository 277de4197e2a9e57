// What the module says of itself to those who look at the file.
#include "Com.h"

#include <gtest/gtest.h>

namespace {

TEST(VersionResource, SaysWhatTheModuleIs) {
    const auto dispatch = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    Bstr build;
    dispatch->get_Build(build.out());
    wchar_t path[1024];
    ASSERT_NE(::GetModuleFileNameW(::GetModuleHandleW(L"NeltCtrlx64.dll"), path, 1024), 0U);
    std::vector<BYTE> resource(::GetFileVersionInfoSizeW(path, nullptr));
    ASSERT_TRUE(::GetFileVersionInfoW(path, 0, static_cast<DWORD>(resource.size()), resource.data()));

    const auto text = [&resource](const std::wstring& name) {
        void* value = nullptr;
        UINT size = 0;
        ::VerQueryValueW(resource.data(), (L"\\StringFileInfo\\040904B0\\" + name).c_str(), &value, &size);
        return std::wstring(value == nullptr ? L"" : static_cast<const wchar_t*>(value));
    };
    EXPECT_EQ(text(L"FileVersion") + L" (x64)", build.str());
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"CompanyName", L"Quorvane"},
        {L"FileDescription", L"Messaging component: SMS, pager messages and MMS"},
        {L"FileVersion", L"5.3.10.1123"},
        {L"LegalCopyright", L"Copyright (C) Quorvane"},
        {L"OriginalFilename", L"NeltCtrlx64.dll"},
        {L"ProductName", L"Velqar"},
        {L"ProductVersion", L"5.3.10.1123"},
    };
    for (const auto& [name, expected] : rows) EXPECT_EQ(text(name), expected) << name;

    void* numbers = nullptr;
    UINT size = 0;
    ASSERT_TRUE(::VerQueryValueW(resource.data(), L"\\", &numbers, &size));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(numbers);
    EXPECT_EQ(fixed.dwFileVersionMS, MAKELONG(3, 5));
    EXPECT_EQ(fixed.dwFileVersionLS, MAKELONG(1123, 10));
    EXPECT_EQ(fixed.dwProductVersionMS, fixed.dwFileVersionMS);
    EXPECT_EQ(fixed.dwProductVersionLS, fixed.dwFileVersionLS);

    // The help of the member says it too.
    Com<ITypeInfo> info;
    Bstr help;
    DISPID member = 0;
    auto* name = const_cast<LPOLESTR>(L"Build");
    ASSERT_EQ(dispatch->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &member), S_OK);
    ASSERT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out()), S_OK);
    info->GetDocumentation(member, nullptr, help.out(), nullptr, nullptr);
    EXPECT_NE(help.str().find(L"\"" + build.str() + L"\""), std::wstring::npos) << help.str();
}

}  // namespace
