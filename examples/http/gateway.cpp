// Sends one SMS through an HTTP gateway, whose requests two templates describe. Early bound through the
// vtable; NeltCtrl.h comes from the type library: it is in include/ of the package.
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

void Send(ISmsProtocolHttp* gateway, const wchar_t* recipient, const wchar_t* text) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    message->put_Format(std::regex_search(text, beyondGsm) ? asMESSAGEFORMAT_UNICODE : asMESSAGEFORMAT_TEXT);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    gateway->Send(&argument);
    message->Release();
}

bool Report(ISmsProtocolHttp* gateway) {
    LONG error = 0;
    gateway->get_LastError(&error);
    BSTR text = nullptr;
    if (error == 0) {
        gateway->get_ProviderResponse(&text);
        std::printf("Answer: %ls\n", text);
    } else {
        gateway->GetErrorDescription(error, &text);
        std::printf("Failed: %ld %ls\n", error, text);
    }
    SysFreeString(text);
    return error == 0;
}

// Whether an argument is a whole number that an int holds.
bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of(L"0123456789") == text.npos;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 5 || !IsNumber(argv[2])) {
        std::puts(R"(gateway_example 127.0.0.1 8080 +31612345678 "The text" [account password])");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ISmsProtocolHttp* gateway = New<SmsProtocolHttp, ISmsProtocolHttp>();
    gateway->put_ProviderHost(Text(argv[1]));
    gateway->put_ProviderPort(std::stoi(argv[2]));
    // The templates: a request as the provider describes it, from behind "host/", with a placeholder where
    // the number and where the text stand. What follows "?" is posted. These are for a gateway that answers
    // OK or ERROR; docs/http.md has all placeholders.
    gateway->put_URLText(Text(L"send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%"));
    gateway->put_URLUnicode(Text(L"send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%"));
    gateway->put_ProviderSuccessResponse(Text(L"OK"));
    gateway->put_ProviderErrorResponse(Text(L"ERROR"));
    if (argc > 6) {
        gateway->put_ProviderWebAccount(Text(argv[5]));
        gateway->put_ProviderWebPassword(Text(argv[6]));
    }
    Send(gateway, argv[3], argv[4]);
    const bool sent = Report(gateway);
    gateway->Release();
    CoUninitialize();
    return sent ? 0 : 1;
}
