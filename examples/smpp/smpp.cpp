// smpp send 127.0.0.1 2775 user password +31612345678 "The text" | receive 127.0.0.1 2775 user password
// [seconds] Early bound through the vtable; NeltCtrl.h comes from the type library (build/windows/generated).
#include "NeltCtrl.h"

#include <cstdio>
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

bool Failed(ISmsProtocolSmpp* smpp) {
    LONG error = 0;
    smpp->get_LastError(&error);
    if (error == 0) return false;
    BSTR text = nullptr;
    smpp->GetErrorDescription(error, &text);
    std::printf("Failed: %ld %ls\n", error, text);
    SysFreeString(text);
    return true;
}

void Send(ISmsProtocolSmpp* smpp, const wchar_t* recipient, const wchar_t* text) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    message->put_RequestDeliveryStatus(1);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    BSTR reference = nullptr;
    smpp->Send(&argument, &reference);
    message->Release();
    VARIANT item;
    if (!Failed(smpp) && SUCCEEDED(smpp->QueryStatus(reference, 1, &item)) && !Failed(smpp)) {
        auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
        BSTR description = nullptr;
        status->get_StatusDescription(&description);
        std::printf("Status: %ls\n", description);
        SysFreeString(description);
        status->Release();
    }
    SysFreeString(reference);
}

void Receive(ISmsProtocolSmpp* smpp, int seconds) {
    for (int i = 0; i < 2 * seconds; ++i) {
        smpp->Sleep(500);
        VARIANT item;
        LONG error = 0;
        for (smpp->GetFirstMessage(&item); smpp->get_LastError(&error), error == 0;
             smpp->GetNextMessage(&item)) {
            auto* message = static_cast<ISmsMessage*>(item.pdispVal);
            BSTR sender = nullptr;
            BSTR data = nullptr;
            message->get_Sender(&sender);
            message->get_Data(&data);
            std::printf("From %ls: %ls\n", sender, data);
            SysFreeString(sender);
            SysFreeString(data);
            message->Release();
        }
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 6) return 1;
    const std::wstring job = argv[1];
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ISmsProtocolSmpp* smpp = New<SmsProtocolSmpp, ISmsProtocolSmpp>();
    smpp->put_Server(Text(argv[2]));
    smpp->put_ServerPort(std::stoi(argv[3]));
    smpp->put_SystemID(Text(argv[4]));
    smpp->put_SystemPassword(Text(argv[5]));
    smpp->Connect();
    const bool connected = !Failed(smpp);
    if (connected && job == L"send" && argc > 7) Send(smpp, argv[6], argv[7]);
    if (connected && job == L"receive") Receive(smpp, argc > 6 ? std::stoi(argv[6]) : 2);
    smpp->Disconnect();
    smpp->Release();
    CoUninitialize();
    return connected ? 0 : 1;
}
