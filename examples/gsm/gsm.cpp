// SMS through a GSM modem.
// Early bound through the vtable; NeltCtrl.h comes from the type library: it is in include/ of the package.
#include "NeltCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <windows.h>

namespace {

ISmsProtocolGsm* gsm = nullptr;

const std::wregex beyondGsm(
    LR"([^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2)"
    LR"(\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC])");

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

void Check() {
    LONG error = 0;
    gsm->get_LastError(&error);
    if (error == 0) return;
    BSTR text = nullptr;
    gsm->GetErrorDescription(error, &text);
    std::printf("Failed: %ld %ls\n", error, text);
    std::exit(1);
}

BSTR Send(const wchar_t* recipient, const wchar_t* text, bool withReport) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(SysAllocString(recipient));
    message->put_Data(SysAllocString(text));
    message->put_Format(std::regex_search(text, beyondGsm) ? asMESSAGEFORMAT_UNICODE_MULTIPART
                                                           : asMESSAGEFORMAT_TEXT_MULTIPART);
    message->put_RequestDeliveryStatus(withReport);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    BSTR reference = nullptr;
    gsm->Send(&argument, &reference);
    message->Release();
    Check();
    std::printf("Sent, reference %ls\n", reference);
    return reference;
}

void Receive() {
    LONG count = 0;
    gsm->Receive(&count);
    Check();
    VARIANT item;
    LONG error = 0;
    for (gsm->GetFirstMessage(&item); gsm->get_LastError(&error), error == 0; gsm->GetNextMessage(&item)) {
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

void Report(const wchar_t* recipient, const wchar_t* text) {
    BSTR reference = Send(recipient, text, true);
    for (LONG completed = 0; completed == 0;) {
        VARIANT item;
        gsm->QueryStatus(reference, &item);
        Check();
        auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
        BSTR description = nullptr;
        status->get_StatusDescription(&description);
        status->get_IsCompleted(&completed);
        std::printf("Status: %ls\n", description);
        SysFreeString(description);
        status->Release();
        if (completed == 0) Sleep(11000);
    }
    SysFreeString(reference);
}

int Usage() {
    std::puts(R"(gsm_example send COM5 +31612345678 "The text" | receive COM5 | )"
              R"(report COM5 +31612345678 "The text" | pin COM5 1234)");
    return 2;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return Usage();
    const std::wstring job = argv[1];
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    gsm = New<SmsProtocolGsm, ISmsProtocolGsm>();
    gsm->put_Device(SysAllocString(argv[2]));
    if (job == L"receive") {
        Receive();
    } else if (job == L"send" && argc > 4) {
        SysFreeString(Send(argv[3], argv[4], false));
    } else if (job == L"report" && argc > 4) {
        Report(argv[3], argv[4]);
    } else if (job == L"pin" && argc > 3) {
        gsm->EnterPin(SysAllocString(argv[3]));
        Check();
        std::puts("PIN accepted");
    } else {
        return Usage();
    }
    gsm->Release();
    CoUninitialize();
    return 0;
}
