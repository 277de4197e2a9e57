// Multimedia messages as a handset sends and fetches them (docs/mm1.md). A modem that is given by its name in
// Windows dials; without one, or with a port, the connection of the machine is used.
// Early bound through the vtable; NeltCtrl.h comes from the type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>
#include <windows.h>

namespace {

constexpr LONG noMoreMessages = 33060;

IMmsProtocolMm1* mm1 = nullptr;

// A text for one call, or one that a call gives.
class Text {
  public:
    Text() = default;
    explicit Text(const std::wstring& text) : text_(SysAllocString(text.c_str())) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    operator BSTR() const { return text_; }
    BSTR* operator&() { return &text_; }
    const wchar_t* Characters() const { return text_ != nullptr ? text_ : L""; }

  private:
    BSTR text_ = nullptr;
};

template <class Class, class Interface>
Interface* New() {
    void* object = nullptr;
    if (FAILED(
            CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), &object))) {
        std::puts("The component is not registered: regsvr32 NeltCtrlx64.dll");
        std::exit(1);
    }
    return static_cast<Interface*>(object);
}

VARIANT Argument(IDispatch* object) {
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = object;
    return argument;
}

// Every class has the two members. What was connected is disconnected before the program ends.
template <class Object>
void Check(Object* object) {
    LONG error = 0;
    object->get_LastError(&error);
    if (error == 0) return;
    Text text;
    object->GetErrorDescription(error, &text);
    std::printf("Failed: %ld %ls\n", error, text.Characters());
    mm1->Disconnect();
    std::exit(1);
}

void Use(const std::wstring& device) {
    if (!device.empty()) mm1->put_Device(Text(device));
    if (device.empty() || std::regex_match(device, std::wregex(LR"(COM\d+:?)", std::regex::icase))) {
        mm1->put_AdvancedSettings(Text(L"UseExistingConnection=1"));
    }
}

IMmsMessage* Compose(const wchar_t* recipient, const wchar_t* text, const wchar_t* picture) {
    IMmsSlide* slide = New<MmsSlide, IMmsSlide>();
    slide->AddText(Text(text));
    VARIANT permission;
    permission.vt = VT_ERROR;  // none
    permission.scode = DISP_E_PARAMNOTFOUND;
    slide->AddAttachment(Text(picture), &permission);
    Check(slide);
    IMmsMessage* message = New<MmsMessage, IMmsMessage>();
    message->put_Subject(Text(L"A picture"));
    message->AddRecipient(Text(recipient), asMMS_RECIPIENT_TO);
    Check(message);
    VARIANT added = Argument(slide);
    message->AddSlide(&added);
    slide->Release();
    return message;
}

void Send(const wchar_t* recipient, const wchar_t* text, const wchar_t* picture, const wchar_t* modem) {
    IMmsMessage* message = Compose(recipient, text, picture);
    Use(modem);
    mm1->Connect();
    Check(mm1);
    VARIANT sent = Argument(message);
    mm1->Send(&sent);
    Check(mm1);
    Text id;
    mm1->get_MessageId(&id);
    std::printf("Sent, message id %ls\n", id.Characters());
    message->Release();
    mm1->Disconnect();
}

// Where the messages lie whose notifications the modem has.
std::vector<std::wstring> Waiting() {
    std::vector<std::wstring> locations;
    VARIANT item;
    LONG error = 0;
    for (mm1->GetFirstMessage(&item); mm1->get_LastError(&error), error == 0; mm1->GetNextMessage(&item)) {
        auto* notification = static_cast<ISmsMessage*>(item.pdispVal);
        Text data;
        notification->get_Data(&data);
        std::wcmatch location;
        if (std::regex_search(data.Characters(), location, std::wregex(LR"(\bURL=(\S+))"))) {
            locations.push_back(location[1]);
        }
        notification->Release();
    }
    if (error != noMoreMessages) Check(mm1);
    return locations;
}

void Receive(const wchar_t* device, const std::wstring& folder) {
    Use(device);
    // All notifications first: while a connection is dialled, the modem tells nothing.
    const std::vector<std::wstring> locations = Waiting();
    mm1->Connect();
    Check(mm1);
    int number = 0;
    for (const std::wstring& location : locations) {
        VARIANT item;
        mm1->Retrieve(Text(location), &item);
        Check(mm1);
        auto* message = static_cast<IMmsMessage*>(item.pdispVal);
        Text from;
        Text subject;
        message->get_From(&from);
        message->get_Subject(&subject);
        std::printf("From %ls: %ls\n", from.Characters(), subject.Characters());
        message->SaveToFile(Text(folder + L"\\message" + std::to_wstring(++number) + L".mms"),
                            asMMS_MM1FILE_MRETRIEVECONF);
        Check(message);
        message->Release();
    }
    mm1->Disconnect();
}

int Usage() {
    std::puts(R"(mm1_example send provider.ini +31612345678 "The text" picture.jpg [modem] | )"
              "receive provider.ini COM5 folder");
    return 2;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 5) return Usage();
    const std::wstring job = argv[1];
    if (job != L"receive" && (job != L"send" || argc < 6)) return Usage();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    mm1 = New<MmsProtocolMm1, IMmsProtocolMm1>();
    mm1->ProviderLoadConfig(Text(argv[2]));
    Check(mm1);
    if (job == L"send") {
        Send(argv[3], argv[4], argv[5], argc > 6 ? argv[6] : L"");
    } else {
        Receive(argv[3], argv[4]);
    }
    mm1->Release();
    CoUninitialize();
    return 0;
}
