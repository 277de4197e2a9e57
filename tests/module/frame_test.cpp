// The frame through real COM: creation, unloading, the interface listing, the common members, bad input.
#include "Com.h"
#include "Common/GsmPdu/UserDataHeader.h"
#include "TypeLibraryListing.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

TEST(Creation, WorksThroughEveryProgId) {
    for (const wchar_t* progId :
         {L"Quorvane.SmsMessage", L"Quorvane.SmsMessage.1", L"Quorvane.SmsConstants.1",
          L"Quorvane.SmsDeliveryReport", L"Quorvane.SmsDeliveryReport.1", L"quorvane.smsprotocolgsm"}) {
        EXPECT_NO_THROW(Create<IDispatch>(progId)) << progId;
    }
    for (const wchar_t* progId :
         {L"Quorvane.SmsDataRingtone", L"Quorvane.SmsDataPicture", L"Quorvane.SmsDeliveryStatus"}) {
        EXPECT_ANY_THROW(Create<IDispatch>(progId)) << progId;
    }
}

TEST(Creation, ClassObjectsRefuseWhatTheyMust) {
    Com<IClassFactory> factory;
    ASSERT_EQ(::CoGetClassObject(__uuidof(SmsMessage), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                 reinterpret_cast<void**>(factory.out())),
              S_OK);
    void* object = &factory;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
}

TEST(Unloading, FollowsObjectsClassObjectsAndLocks) {
    HMODULE module = ::LoadLibraryW(L"NeltCtrlx64.dll");
    const auto canUnload = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(::GetProcAddress(module, "DllCanUnloadNow")));
    const auto getClass = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void*>(::GetProcAddress(module, "DllGetClassObject")));
    ::CoFreeUnusedLibrariesEx(0, 0);
    ASSERT_EQ(canUnload(), S_OK);
    IClassFactory* factory = nullptr;
    ASSERT_EQ(getClass(__uuidof(SmsProtocolGsm), IID_IClassFactory, reinterpret_cast<void**>(&factory)),
              S_OK);
    EXPECT_EQ(canUnload(), S_FALSE);
    IDispatch* object = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)), S_OK);
    factory->LockServer(TRUE);
    factory->Release();
    EXPECT_EQ(canUnload(), S_FALSE);
    object->Release();
    EXPECT_EQ(canUnload(), S_FALSE);
    ASSERT_EQ(getClass(__uuidof(SmsMessage), IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
    factory->LockServer(FALSE);
    factory->Release();
    EXPECT_EQ(canUnload(), S_OK);
    EXPECT_EQ(getClass(IID_IUnknown, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
              CLASS_E_CLASSNOTAVAILABLE);
    ::FreeLibrary(module);
}

std::string Golden(const std::string& name) {
    std::ifstream file(std::getenv("GOLDEN_LISTINGS") + ("/" + name));
    std::ostringstream golden;
    golden << file.rdbuf();
    std::string expected = golden.str();
    std::erase(expected, '\r');
    return expected;
}

TEST(Interface, IsTheGoldenListing) {
    EXPECT_EQ(ListTypeLibrary(L"NeltCtrlx64.dll"), Golden("interface.txt"))
        << "the interface never changes once it has landed; additions are appended to "
           "tests/golden/interface.txt";
}

// The pages of docs/reference are made from that listing.
TEST(Interface, HasTheHelpTextsOfTheReference) {
    EXPECT_EQ(ListReference(L"NeltCtrlx64.dll"), Golden("reference.tsv"))
        << "scripts/reference.py --listing brings tests/golden/reference.tsv and the pages up to date";
}

TEST(Interface, ConstantsReadTheirValues) {
    const auto constants = Create<ISmsConstants>(L"Quorvane.SmsConstants");
    for (const auto& [name, value] : {std::pair{L"asMESSAGEFORMAT_NOTIFICATION_MMS", 74L},
                                      {L"asmessageformat_REPORT", 30L},
                                      {L"asDELIVERYSTATUS_SUBMITTED", 11L},
                                      {L"asDELIVERYSTATUS_SUBMITREQUESTED", 10L},
                                      {L"asMMS_CLASS_PERSONAL", 0L},
                                      {L"asSMPPDELIVERYREPORTFORMAT_DEC", 1L}}) {
        Variant outcome;
        ASSERT_EQ(Call(constants.get(), name, DISPATCH_PROPERTYGET, {}, &outcome), S_OK) << name;
        EXPECT_EQ(outcome.lVal, value) << name;
    }
}

TEST(CommonMembers, HaveTheirFixedTexts) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    for (int round = 0; round < 2; ++round) {
        Bstr text;
        gsm->get_Version(text.out());
        EXPECT_EQ(text.str(), L"5.3 (x64)");
        gsm->get_Build(text.out());
        EXPECT_EQ(text.str(), L"5.3.10.1123 (x64)");
        gsm->get_Module(text.out());
        EXPECT_EQ(text.str(), L"NeltCtrlx64.dll");
        gsm->GetErrorDescription(99999, text.out());
        EXPECT_EQ(text.str(), L"Generic Error");
        EXPECT_EQ(gsm->Clear(), S_OK);
    }
}

TEST(CommonMembers, LastErrorIsThatOfTheLastMethodOnly) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    LONG error = -1;
    gsm->get_LastError(&error);
    EXPECT_EQ(error, 0);
    Variant message;
    gsm->GetFirstMessage(&message);
    gsm->put_Device(Bstr(L"COM9"));
    Bstr text;
    gsm->get_Device(text.out());
    gsm->GetErrorDescription(0, text.out());
    gsm->get_LastError(&error);
    EXPECT_EQ(error, 33060);
    EXPECT_EQ(message.vt, VT_DISPATCH);
    EXPECT_EQ(message.pdispVal, nullptr);
    LONG count = 0;
    gsm->GetDeviceCount(&count);
    gsm->get_LastError(&error);
    EXPECT_EQ(error, 0);
}

TEST(CommonMembers, NullPointersAreSurvived) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    EXPECT_EQ(gsm->get_LastError(nullptr), S_OK);
    EXPECT_EQ(gsm->get_Device(nullptr), S_OK);
    EXPECT_EQ(gsm->put_Device(nullptr), S_OK);
    EXPECT_EQ(gsm->get_LogFile(nullptr), S_OK);
    EXPECT_EQ(gsm->GetErrorDescription(0, nullptr), S_OK);
    EXPECT_EQ(message->get_Data(nullptr), S_OK);
    EXPECT_EQ(message->get_Format(nullptr), S_OK);
    LONG error = 0;
    const auto code = [&](HRESULT outcome) {
        EXPECT_EQ(outcome, S_OK);
        gsm->get_LastError(&error);
        return error;
    };
    Bstr text;
    Variant value;
    EXPECT_EQ(code(gsm->Send(nullptr, text.out())), 33005);
    EXPECT_EQ(code(gsm->Send(&value, nullptr)), 33005);
    EXPECT_EQ(code(gsm->Receive(nullptr)), 33005);
    EXPECT_EQ(code(gsm->GetFirstMessage(nullptr)), 33005);
    EXPECT_EQ(code(gsm->GetNextMessage(nullptr)), 33005);
    EXPECT_EQ(code(gsm->GetMessage(0, nullptr)), 33005);
    EXPECT_EQ(code(gsm->QueryStatus(nullptr, nullptr)), 33005);
    EXPECT_EQ(code(gsm->QueryStatus(nullptr, &value)), 34050);
    EXPECT_EQ(code(gsm->GetDeviceCount(nullptr)), 33005);
    EXPECT_EQ(code(gsm->GetDevice(0, nullptr)), 33005);
    EXPECT_EQ(code(gsm->GetDevice(99, text.out())), 30201);
    EXPECT_EQ(code(gsm->SendCommand(nullptr, 0, nullptr)), 33005);
    EXPECT_EQ(code(gsm->EnterPin(nullptr)), 33142);
    EXPECT_EQ(code(gsm->SaveReports(nullptr)), 33070);
    EXPECT_EQ(code(gsm->LoadReports(nullptr)), 33071);
    EXPECT_EQ(code(gsm->DeleteMessage(-1)), 33060);
    EXPECT_EQ(code(gsm->GetMessage(-1, &value)), 34050);
}

// Whatever a caller's variables held.
TEST(CommonMembers, OutputsOfFailedMethodsAreEmpty) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    const auto smpp = Create<ISmsProtocolSmpp>(L"Quorvane.SmsProtocolSmpp");
    gsm->put_Device(Bstr(L"COM99"));
    VARIANT noMessage{};
    wchar_t stale[] = L"stale";
    BSTR text = stale;
    gsm->Send(&noMessage, &text);
    EXPECT_EQ(text, nullptr);
    text = stale;
    gsm->GetDevice(99, &text);
    EXPECT_EQ(text, nullptr);
    text = stale;
    gsm->SendCommand(Bstr(L"AT"), 100, &text);
    EXPECT_EQ(::SysStringLen(text), 0U);
    ::SysFreeString(text);
    LONG count = 7;
    gsm->Receive(&count);
    EXPECT_EQ(count, 0);
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = stale;
    smpp->GetTLVValue(5, &value);
    EXPECT_EQ(value.vt, VT_EMPTY);
    value.vt = VT_BSTR;
    value.bstrVal = stale;
    gsm->QueryStatus(Bstr(L"none"), &value);
    EXPECT_EQ(value.vt, VT_DISPATCH);
    EXPECT_EQ(value.pdispVal, nullptr);
}

TEST(LogFiles, BadNamesChangeNothing) {
    const auto gsm = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
    for (const std::wstring& name :
         {std::wstring(L"C:\\windows"), std::wstring(L"Q:\\none\\x.log"), std::wstring(65536, L'f'),
          std::wstring(L"a\0b", 3), std::wstring(L"con?<>|")}) {
        EXPECT_EQ(gsm->put_LogFile(Bstr(name)), S_OK);
        EXPECT_EQ(gsm->put_ActivityFile(Bstr(name)), S_OK);
        gsm->put_Device(Bstr(L"COM99"));
        Bstr response;
        EXPECT_EQ(gsm->SendCommand(Bstr(L"AT"), 100, response.out()), S_OK);
        LONG error = 0;
        gsm->get_LastError(&error);
        EXPECT_EQ(error, 30104);
    }
}

TEST(Assertions, AreAppendedToTheirFile) {
    ::CreateDirectoryW(L"c:\\qvdebug", nullptr);
    ::DeleteFileW(L"c:\\qvdebug\\assert.txt");
    CUserDataHeader full;
    for (int i = 0; i < 256; ++i) full.AddOctet(0);
    const CUserDataHeader copy(full);
    EXPECT_EQ(copy.OctetCount(), 256U);
    std::ifstream file("c:\\qvdebug\\assert.txt");
    std::string line;
    std::getline(file, line);
    file.close();
    ASSERT_GT(line.size(), 10U);
    EXPECT_EQ(
        line.substr(10),
        " QUORVANE ASSERTION FAILURE, FILE: [..\\..\\..\\Common\\GsmPdu\\UserDataHeader.cpp]; LINE: 191");
    ::DeleteFileW(L"c:\\qvdebug\\assert.txt");
    ::RemoveDirectoryW(L"c:\\qvdebug");
    const CUserDataHeader unreported(full);  // no folder: nothing happens
}

}  // namespace
