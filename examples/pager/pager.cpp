// Sends one page through a paging server. Early bound through the vtable; NeltCtrl.h comes from the type
// library: it is in include/ of the package.
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

void Send(IPagerProtocolSnpp* pager, const wchar_t* recipient, const wchar_t* text) {
    IPagerMessage* message = New<PagerMessage, IPagerMessage>();
    message->put_Recipient(Text(recipient));
    message->put_Data(Text(text));
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    pager->Send(&argument);
    message->Release();
}

bool Report(IPagerProtocolSnpp* pager) {
    LONG error = 0;
    pager->get_LastError(&error);
    BSTR text = nullptr;
    if (error == 0) {
        pager->get_ProviderResponse(&text);
        std::printf("Answer: %ls\n", text);
    } else {
        pager->GetErrorDescription(error, &text);
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
        std::puts(R"(pager_example 127.0.0.1 4444 5551212 "The text" [password])");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IPagerProtocolSnpp* pager = New<PagerProtocolSnpp, IPagerProtocolSnpp>();
    pager->put_Server(Text(argv[1]));
    pager->put_ServerPort(std::stoi(argv[2]));
    if (argc > 5) pager->put_ProviderPassword(Text(argv[5]));
    Send(pager, argv[3], argv[4]);
    const bool sent = Report(pager);
    pager->Release();
    CoUninitialize();
    return sent ? 0 : 1;
}
