// Sends a text with a link that the phone offers to open. Early bound through the vtable; NeltCtrl.h comes
// from the type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <windows.h>

namespace {

// A text that is handed to a call, or that a call gives.
class Text {
  public:
    explicit Text(const wchar_t* text = nullptr) : text_(SysAllocString(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    operator BSTR() const { return text_; }
    BSTR* operator&() { return &text_; }

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

template <class Object>
void Check(Object* object, const char* what) {
    LONG error = 0;
    object->get_LastError(&error);
    if (error == 0) return;
    Text text;
    object->GetErrorDescription(error, &text);
    std::printf("%s failed: %ld %ls\n", what, error, static_cast<BSTR>(text));
    std::exit(1);
}

void Encode(const wchar_t* url, const wchar_t* description, BSTR* encoded) {
    ISmsDataWapPush* content = New<SmsDataWapPush, ISmsDataWapPush>();
    content->put_ConnectionType(asWAPPUSH_SERVICE_INDICATION);
    content->put_URL(Text(url));
    content->put_Description(Text(description));
    content->put_SignalAction(asWAPPUSHSIGNAL_HIGH);
    content->Encode();
    Check(content, "Encode");
    content->get_EncodedMessage(encoded);
    content->Release();
}

void Send(const wchar_t* device, const wchar_t* recipient, BSTR content) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(content);
    message->put_Format(asMESSAGEFORMAT_DATA_UDH);
    ISmsProtocolGsm* gsm = New<SmsProtocolGsm, ISmsProtocolGsm>();
    gsm->put_Device(Text(device));
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    Text reference;
    gsm->Send(&argument, &reference);
    Check(gsm, "Send");
    std::printf("Sent, reference %ls\n", static_cast<BSTR>(reference));
    gsm->Release();
    message->Release();
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 5) {
        std::puts(R"(push_example COM5 +31612345678 http://www.example.org/ "The text")");
        return 2;
    }
    const std::wstring text = argv[4];
    if (!std::ranges::all_of(text, [](wchar_t c) { return c >= L' ' && c <= L'~'; })) {
        std::puts("The text is not ASCII: docs/content.md says how other letters go");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        Text content;
        Encode(argv[3], argv[4], &content);
        std::printf("Content: %ls\n", static_cast<BSTR>(content));
        Send(argv[1], argv[2], content);
    }
    CoUninitialize();
    return 0;
}
