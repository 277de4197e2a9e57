// SMS through an SMPP server.
// Early bound through the vtable; NeltCtrl.h comes from the type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <windows.h>

namespace {

const std::wregex beyondGsm(
    LR"([^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2)"
    LR"(\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC])");

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

bool Send(ISmsProtocolSmpp* smpp, const wchar_t* recipient, const wchar_t* text) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    message->put_Format(std::regex_search(text, beyondGsm) ? asMESSAGEFORMAT_UNICODE_MULTIPART
                                                           : asMESSAGEFORMAT_TEXT_MULTIPART);
    message->put_RequestDeliveryStatus(1);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    BSTR reference = nullptr;
    smpp->Send(&argument, &reference);
    message->Release();
    VARIANT item;
    const bool sent = !Failed(smpp) && SUCCEEDED(smpp->QueryStatus(reference, 1, &item)) && !Failed(smpp);
    if (sent) {
        auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
        BSTR description = nullptr;
        status->get_StatusDescription(&description);
        std::printf("Status: %ls\n", description);
        SysFreeString(description);
        status->Release();
    }
    SysFreeString(reference);
    return sent;
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

// Whether an argument is a whole number that an int holds.
bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of(L"0123456789") == text.npos;
}

int Usage() {
    std::puts(R"(smpp_example send 127.0.0.1 2775 user password +31612345678 "The text" | )"
              R"(receive 127.0.0.1 2775 user password [seconds])");
    return 2;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring job = argc > 1 ? argv[1] : L"";
    const bool send = job == L"send" && argc > 7;
    const bool receive = job == L"receive" && argc > 5;
    const std::wstring seconds = receive && argc > 6 ? argv[6] : L"2";
    if ((!send && !receive) || !IsNumber(argv[3]) || !IsNumber(seconds)) return Usage();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ISmsProtocolSmpp* smpp = New<SmsProtocolSmpp, ISmsProtocolSmpp>();
    smpp->put_Server(Text(argv[2]));
    smpp->put_ServerPort(std::stoi(argv[3]));
    smpp->put_SystemID(Text(argv[4]));
    smpp->put_SystemPassword(Text(argv[5]));
    smpp->put_SystemCharSet(asSMPPCHARSET_GSM);
    smpp->Connect();
    bool done = !Failed(smpp);
    if (done && send) done = Send(smpp, argv[6], argv[7]);
    if (done && receive) Receive(smpp, std::stoi(seconds));
    smpp->Disconnect();
    smpp->Release();
    CoUninitialize();
    return done ? 0 : 1;
}
