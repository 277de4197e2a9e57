// Sends one message through a dialled provider. Early bound through the vtable; NeltCtrl.h comes from the
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

void Send(ISmsProtocolDialup* dialup, const wchar_t* recipient, const wchar_t* text) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    dialup->Send(&argument);
    message->Release();
}

bool Report(ISmsProtocolDialup* dialup) {
    LONG error = 0;
    dialup->get_LastError(&error);
    BSTR text = nullptr;
    if (error == 0) {
        dialup->get_ProviderResponse(&text);
        std::printf("Answer: %ls\n", text);
    } else {
        dialup->GetErrorDescription(error, &text);
        std::printf("Failed: %ld %ls\n", error, text);
    }
    SysFreeString(text);
    return error == 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const bool tap = argc > 5 && _wcsicmp(argv[2], L"tap") == 0;
    const bool ucp = argc > 5 && _wcsicmp(argv[2], L"ucp") == 0;
    if (!tap && !ucp) {
        std::puts(R"(dialup_example COM5 ucp|tap 0201234567 0612345678 "The text" [password])");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ISmsProtocolDialup* dialup = New<SmsProtocolDialup, ISmsProtocolDialup>();
    dialup->put_Device(Text(argv[1]));
    dialup->put_ProviderType(tap ? asPROVIDERTYPE_TAP_DEFAULT : asPROVIDERTYPE_UCP);
    dialup->put_ProviderDialString(Text(argv[3]));
    if (argc > 6) dialup->put_ProviderPassword(Text(argv[6]));
    Send(dialup, argv[4], argv[5]);
    const bool sent = Report(dialup);
    dialup->Release();
    CoUninitialize();
    return sent ? 0 : 1;
}
