// The MMS classes from C++: constants, and objects of another apartment.
#include "Elsewhere.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

struct Constant {
    const char* name;
    LONG value;
    const char* help;
};

constexpr Constant kConstants[] = {
#define CONSTANTS_AS_ROWS
#include "mms/MmsConstants.inc"
};

// The published numbers, beside the list that everything else comes from.
TEST(MmsConstants, ReadTheirValues) {
    const auto constants = Create<IMmsConstants>(L"Quorvane.MmsConstants");
    EXPECT_EQ(std::size(kConstants), 57U);
    LONG sum = 0;
    for (const Constant& row : kConstants) {
        Variant outcome;
        const std::wstring name(row.name, row.name + std::strlen(row.name));
        ASSERT_EQ(Call(constants.get(), name.c_str(), DISPATCH_PROPERTYGET, {}, &outcome), S_OK) << row.name;
        EXPECT_EQ(outcome.lVal, row.value) << row.name;
        sum += outcome.lVal;
    }
    EXPECT_EQ(sum, 6 + 3 + 10 + 3 + 12 + 171 + 55 + 3 + 3 + 6);
}

LONG LastError(auto& object) {
    LONG code = -1;
    object->get_LastError(&code);
    return code;
}

// No property shows the parts of a slide, so that one behind a proxy cannot be copied.
TEST(MmsMessage, TakesNoSlideOfAnotherApartment) {
    Elsewhere<IMmsSlide> elsewhere(L"Quorvane.MmsSlide");
    const auto proxy = elsewhere.Proxy();
    ASSERT_NE(proxy.get(), nullptr);
    const auto message = Create<IMmsMessage>(L"Quorvane.MmsMessage");
    Variant slide(proxy.get());
    EXPECT_EQ(message->AddSlide(&slide), S_OK);
    EXPECT_EQ(LastError(message), 34141);
    EXPECT_EQ(message->AddSlide(nullptr), S_OK);
    EXPECT_EQ(LastError(message), 34141);
    EXPECT_EQ(message->GetFirstSlide(nullptr), S_OK);
    EXPECT_EQ(LastError(message), 33005);
}

TEST(MmsSlide, TakesAPermissionOfAnotherApartment) {
    Elsewhere<IMmsPermission> elsewhere(L"Quorvane.MmsPermission", [](IMmsPermission* permission) {
        permission->put_Operation(1);
        permission->put_Times(42);
    });
    const auto proxy = elsewhere.Proxy();
    ASSERT_NE(proxy.get(), nullptr);
    wchar_t file[MAX_PATH];
    ::GetModuleFileNameW(nullptr, file, MAX_PATH);
    const auto slide = Create<IMmsSlide>(L"Quorvane.MmsSlide");
    Variant permission(proxy.get());
    EXPECT_EQ(slide->AddAttachment(Bstr(file), &permission), S_OK);
    EXPECT_EQ(LastError(slide), 0);
    const auto message = Create<IMmsMessage>(L"Quorvane.MmsMessage");
    Variant own(slide.get());
    message->AddSlide(&own);
    message->AddRecipient(Bstr(L"a@b.org"), 0);
    message->EncodeMessage();
    EXPECT_EQ(LastError(message), 0);
    Bstr unit;
    message->get_EncodedMessage(unit.out());
    EXPECT_NE(unit.str().find(L"<o-dd:play>\r\n<o-ex:constraint>\r\n<o-dd:count>42</od-dd:count>"),
              std::wstring::npos);
}

TEST(MmsFiles, ThatAreLockedAreNeitherReadNorWritten) {
    wchar_t folder[MAX_PATH];
    ::GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + std::wstring(L"neltctrl-locked.jpg");
    HANDLE locked = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    ASSERT_NE(locked, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    ::WriteFile(locked, "JPEG", 4, &written, nullptr);
    const Bstr file(path);
    const auto slide = Create<IMmsSlide>(L"Quorvane.MmsSlide");
    EXPECT_EQ(slide->AddAttachment(file, nullptr), S_OK);
    EXPECT_EQ(LastError(slide), 34137);
    slide->AddText(Bstr(L"text"));
    const auto message = Create<IMmsMessage>(L"Quorvane.MmsMessage");
    Variant own(slide.get());
    message->AddSlide(&own);
    message->AddRecipient(Bstr(L"a@b.org"), 0);
    message->SaveToFile(file, 1);
    EXPECT_EQ(LastError(message), 34151);
    message->LoadFromFile(file);
    EXPECT_EQ(LastError(message), 34137);
    message->LoadCustomSMIL(file);
    EXPECT_EQ(LastError(message), 34138);
    ::CloseHandle(locked);
}

}  // namespace
