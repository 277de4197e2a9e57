// Sends a text and pictures to a peer MMS server. Early bound through the vtable; NeltCtrl.h comes from the
// type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <windows.h>

namespace {

// A text for one call.
class Text {
  public:
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    operator BSTR() const { return text_; }

  private:
    BSTR text_;
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

// Ends the program when the last call failed.
template <class Interface>
void Check(Interface* object, const wchar_t* what) {
    LONG error = 0;
    object->get_LastError(&error);
    if (error == 0) return;
    BSTR text = nullptr;
    object->GetErrorDescription(error, &text);
    std::printf("%ls: %ld %ls\n", what, error, text);
    SysFreeString(text);
    std::exit(1);
}

IMmsSlide* SlideOf(const wchar_t* text, int pictures, wchar_t** names) {
    IMmsSlide* slide = New<MmsSlide, IMmsSlide>();
    slide->AddText(Text(text));
    VARIANT none;
    none.vt = VT_ERROR;
    none.scode = DISP_E_PARAMNOTFOUND;
    for (int i = 0; i < pictures; ++i) {
        slide->AddAttachment(Text(names[i]), &none);
        Check(slide, names[i]);
    }
    return slide;
}

IMmsMessage* MessageTo(const wchar_t* recipient, IMmsSlide* slide) {
    IMmsMessage* message = New<MmsMessage, IMmsMessage>();
    message->put_From(Text(L"+31600000001"));
    message->put_Subject(Text(L"Pictures"));
    message->AddRecipient(Text(recipient), 0);
    Check(message, L"The recipient");
    VARIANT argument = Argument(slide);
    message->AddSlide(&argument);
    Check(message, L"The slide");
    return message;
}

void Send(wchar_t** argv, IMmsMessage* message) {
    IMmsProtocolMm4* peer = New<MmsProtocolMm4, IMmsProtocolMm4>();
    peer->put_ProviderHost(Text(argv[1]));
    peer->put_ProviderPort(std::stoi(argv[2]));
    peer->put_ProviderAccount(Text(argv[3]));
    peer->put_ProviderPassword(Text(argv[4]));
    peer->put_ProviderDomain(Text(argv[6]));
    VARIANT argument = Argument(message);
    peer->Send(&argument);
    Check(peer, L"Send failed");
    BSTR answer = nullptr;
    peer->get_ProviderResponse(&answer);
    std::printf("Answer: %ls\n", answer);
    SysFreeString(answer);
    peer->Release();
}

// Whether an argument is a whole number that an int holds.
bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of(L"0123456789") == text.npos;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    constexpr int kFirstPicture = 8;
    if (argc < kFirstPicture || !IsNumber(argv[2])) {
        std::puts(
            "mm4_example 127.0.0.1 2525 account password 31612345678 example.net \"The text\" picture.jpg "
            "...");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IMmsSlide* slide = SlideOf(argv[7], argc - kFirstPicture, argv + kFirstPicture);
    IMmsMessage* message = MessageTo(argv[5], slide);
    Send(argv, message);
    message->Release();
    slide->Release();
    CoUninitialize();
    return 0;
}
