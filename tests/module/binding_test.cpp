// Late binding: names, arguments of wrong types, and the forms in which objects arrive.
#include "Com.h"

#include <cwctype>
#include <gtest/gtest.h>

namespace {

TEST(LateBinding, FindsMembersByTheirWholeNameInAnyCase) {
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    const auto id = [&message](std::wstring name) {
        LPOLESTR text = name.data();
        DISPID found = 0;
        const HRESULT outcome = message->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &found);
        return SUCCEEDED(outcome) ? found : outcome;
    };
    ITypeInfo* info = nullptr;
    ASSERT_EQ(message->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &function)); ++i) {
        Bstr name;
        info->GetDocumentation(function->memid, name.out(), nullptr, nullptr, nullptr);
        std::wstring upper = name.str();
        for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(c));
        EXPECT_EQ(id(name.str()), function->memid);
        EXPECT_EQ(id(upper), function->memid);
        info->ReleaseFuncDesc(function);
    }
    info->Release();
    for (const std::wstring& name :
         {std::wstring(L"Sende"), std::wstring(L"Senders"), std::wstring(), std::wstring(65536, L'S'),
          std::wstring(L"\u017Fender"), std::wstring(L"zzz")}) {
        EXPECT_EQ(id(name), DISP_E_UNKNOWNNAME) << name.size();
    }
}

TEST(LateBinding, RefusesWrongTypesWithoutHarm) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    Variant outcome;
    EXPECT_EQ(
        Call(gsm.get(), L"deviceSPEED", DISPATCH_PROPERTYPUT, {Variant(std::wstring(L"9600"))}, nullptr),
        S_OK);
    EXPECT_EQ(Call(gsm.get(), L"DeviceSpeed", DISPATCH_PROPERTYGET, {}, &outcome), S_OK);
    EXPECT_EQ(outcome.lVal, 9600);
    EXPECT_NE(
        Call(gsm.get(), L"DeviceSpeed", DISPATCH_PROPERTYPUT, {Variant(std::wstring(L"fast"))}, nullptr),
        S_OK);
    EXPECT_EQ(Call(gsm.get(), L"NoSuchName", DISPATCH_METHOD, {}, nullptr), DISP_E_UNKNOWNNAME);
    EXPECT_NE(Call(gsm.get(), std::wstring(65536, L'x').c_str(), DISPATCH_METHOD, {}, nullptr), S_OK);
    EXPECT_NE(Call(gsm.get(), L"Send", DISPATCH_METHOD, {}, &outcome), S_OK);
    EXPECT_EQ(Call(gsm.get(), L"DeleteAllMessages", DISPATCH_METHOD, {}, nullptr),
              S_OK);  // the argument is optional
}

// Every form in which a script engine may hand over an object.
TEST(LateBinding, TakesObjectsThroughEveryIndirection) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    const auto constants = Create<ISmsConstants>(L"Quorvane.SmsConstants");
    message->put_Recipient(Bstr(L"123"));  // refused with 34031 before any device is opened
    IDispatch* dispatch = message.get();
    IUnknown* unknown = message.get();
    IDispatch* none = nullptr;
    Variant direct(dispatch);
    VARIANT forms[9]{};
    forms[0] = direct;
    forms[1].vt = VT_DISPATCH | VT_BYREF;
    forms[1].ppdispVal = &dispatch;
    forms[2].vt = VT_VARIANT | VT_BYREF;
    forms[2].pvarVal = &direct;
    forms[3].vt = VT_VARIANT | VT_BYREF;
    forms[3].pvarVal = &forms[2];
    forms[4].vt = VT_VARIANT | VT_BYREF;
    forms[4].pvarVal = &forms[1];
    forms[5].vt = VT_UNKNOWN;
    forms[5].punkVal = unknown;
    forms[6].vt = VT_UNKNOWN | VT_BYREF;
    forms[6].ppunkVal = &unknown;
    forms[7].vt = VT_VARIANT | VT_BYREF;
    forms[7].pvarVal = &forms[7];  // refers to itself
    forms[8].vt = VT_DISPATCH | VT_BYREF;
    forms[8].ppdispVal = &none;
    for (int i = 0; i < 9; ++i) {
        Bstr reference;
        LONG error = 0;
        EXPECT_EQ(gsm->Send(&forms[i], reference.out()), S_OK);
        gsm->get_LastError(&error);
        EXPECT_EQ(error, i < 7 ? 34031 : 34141) << i;
    }
    const Variant empty;
    const Variant number(5L);
    const Variant text(std::wstring(L"x"));
    const Variant foreign(constants.get());
    const Variant nothing(static_cast<IDispatch*>(nullptr));
    for (const VARIANT& wrong : {static_cast<const VARIANT&>(empty), static_cast<const VARIANT&>(number),
                                 static_cast<const VARIANT&>(text), static_cast<const VARIANT&>(foreign),
                                 static_cast<const VARIANT&>(nothing)}) {
        VARIANT argument = wrong;
        Variant outcome;
        EXPECT_EQ(Call(gsm.get(), L"Send", DISPATCH_METHOD, {argument}, &outcome), S_OK);
        LONG error = 0;
        gsm->get_LastError(&error);
        EXPECT_EQ(error, 34141) << wrong.vt;
    }
}

}  // namespace
