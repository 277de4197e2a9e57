// Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md).
// Early bound through the vtable; NeltCtrl.h comes from the type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <windows.h>

namespace {

// A text for one call, or one that a call gives.
class Text {
  public:
    Text() = default;
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
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

// Every class has the two members.
template <class Object>
void Check(Object* object) {
    LONG error = 0;
    object->get_LastError(&error);
    if (error == 0) return;
    Text text;
    object->GetErrorDescription(error, &text);
    std::printf("Failed: %ld %ls\n", error, text.Characters());
    std::exit(1);
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

void Send(IMmsProtocolMm7* mm7, IMmsMessage* message) {
    VARIANT sent = Argument(message);
    mm7->Send(&sent);
    LONG error = 0;
    Text said;
    mm7->get_LastError(&error);
    mm7->get_ProviderResponse(&said);
    if (error != 0 && *said.Characters() != 0) std::printf("The centre said: %ls\n", said.Characters());
    Check(mm7);
    Text id;
    mm7->get_MessageId(&id);
    std::printf("Sent, message id %ls\n", id.Characters());
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 5) {
        std::puts(R"(mm7_example provider.ini +31612345678 "The text" picture.jpg)");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IMmsMessage* message = Compose(argv[2], argv[3], argv[4]);
    IMmsProtocolMm7* mm7 = New<MmsProtocolMm7, IMmsProtocolMm7>();
    mm7->ProviderLoadConfig(Text(argv[1]));
    Check(mm7);
    Send(mm7, message);
    message->Release();
    mm7->Release();
    CoUninitialize();
    return 0;
}
