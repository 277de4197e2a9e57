// Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not
// confirm within a minute, to the next. Early bound through the vtable; NeltCtrl.h comes from the type
// library: it is in include/ of the package.
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

bool Failed(ISmsProtocolGsm* gsm, const char* what, const wchar_t* recipient) {
    LONG error = 0;
    gsm->get_LastError(&error);
    if (error == 0) return false;
    Text text;
    gsm->GetErrorDescription(error, &text);
    std::printf("%s %ls failed: %ld %ls\n", what, recipient, error, static_cast<BSTR>(text));
    return true;
}

void Send(ISmsProtocolGsm* gsm, const wchar_t* recipient, const wchar_t* text, BSTR* reference) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    message->put_Format(std::regex_search(text, beyondGsm) ? asMESSAGEFORMAT_UNICODE_MULTIPART
                                                           : asMESSAGEFORMAT_TEXT_MULTIPART);
    message->put_RequestDeliveryStatus(1);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    gsm->Send(&argument, reference);
    message->Release();
}

bool HasReached(ISmsProtocolGsm* gsm, const wchar_t* recipient, const wchar_t* text) {
    Text reference;
    Send(gsm, recipient, text, &reference);
    if (Failed(gsm, "Sending to", recipient)) return false;
    std::printf("Sent to %ls, reference %ls\n", recipient, static_cast<BSTR>(reference));
    for (int tries = 1; tries <= 6; ++tries) {
        VARIANT item;
        gsm->QueryStatus(reference, &item);
        if (Failed(gsm, "The report of", recipient)) return false;
        auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
        Text description;
        LONG completed = 0;
        LONG value = 0;
        status->get_StatusDescription(&description);
        status->get_IsCompleted(&completed);
        status->get_Status(&value);
        status->Release();
        std::printf("%ls: %ls\n", recipient, static_cast<BSTR>(description));
        if (completed != 0) return value == asDELIVERYSTATUS_DELIVERED;
        Sleep(11000);  // reports are read from the modem every 10 s at the most
    }
    return false;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 4) {
        std::puts(R"(alarm_example COM5 "The text" +31612345678 [+31687654321 ...])");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ISmsProtocolGsm* gsm = New<SmsProtocolGsm, ISmsProtocolGsm>();
    gsm->put_Device(Text(argv[1]));
    int reached = 3;
    while (reached < argc && !HasReached(gsm, argv[reached], argv[2])) ++reached;
    gsm->Release();
    CoUninitialize();
    if (reached == argc) {
        std::puts("Nobody has the alarm");
        return 1;
    }
    std::printf("Done: %ls has the alarm\n", argv[reached]);
    return 0;
}
