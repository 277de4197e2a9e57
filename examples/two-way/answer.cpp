// Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was
// answered is deleted; what could not be answered is tried again. All else (data, MMS notifications, texts
// from names) stays on the device. Early bound through the vtable; NeltCtrl.h comes from the type library:
// it is in include/ of the package.
#include "NeltCtrl.h"

#include <climits>
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

// A text that is handed to a call, or that a call gives.
class Text {
  public:
    explicit Text(const wchar_t* text = nullptr) : text_(SysAllocString(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    operator BSTR() const { return text_; }
    BSTR* operator&() { return &text_; }
    const wchar_t* Show() const { return text_ != nullptr ? text_ : L""; }

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

// What came in may hold any letter.
std::string Utf8(BSTR text) {
    const int units = static_cast<int>(SysStringLen(text));
    std::string octets(3 * static_cast<std::size_t>(units), '\0');
    octets.resize(static_cast<std::size_t>(WideCharToMultiByte(
        CP_UTF8, 0, text, units, octets.data(), static_cast<int>(octets.size()), nullptr, nullptr)));
    return octets;
}

LONG LastError() {
    LONG error = 0;
    gsm->get_LastError(&error);
    return error;
}

bool Failed(const wchar_t* what) {
    const LONG error = LastError();
    if (error == 0) return false;
    Text text;
    gsm->GetErrorDescription(error, &text);
    std::printf("%ls failed: %ld %ls\n", what, error, text.Show());
    return true;
}

bool IsAnswered(ISmsMessage* message, ISmsMessage* answer) {
    static const std::wregex number(L"\\+?[0-9]+");
    LONG format = 0;
    Text sender;
    Text data;
    message->get_Format(&format);
    message->get_Sender(&sender);
    message->get_Data(&data);
    if (format != asMESSAGEFORMAT_TEXT && format != asMESSAGEFORMAT_UNICODE) return false;
    if (!std::regex_match(sender.Show(), number)) return false;
    std::printf("From %ls: %s\n", sender.Show(), Utf8(data).c_str());
    answer->put_Recipient(sender);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = answer;
    Text reference;
    gsm->Send(&argument, &reference);
    return !Failed((std::wstring(L"The answer to ") + sender.Show()).c_str());
}

// Answers up to so many of the messages that were received; gives how many it were.
int AnswerWaiting(ISmsMessage* answer, int most) {
    int answered = 0;
    LONG index = 0;  // of the first message that has no answer yet
    while (answered < most) {
        VARIANT item;
        gsm->GetMessage(index, &item);
        if (LastError() != 0) break;
        auto* message = static_cast<ISmsMessage*>(item.pdispVal);
        if (IsAnswered(message, answer)) {
            gsm->DeleteMessage(index);
            if (Failed(L"DeleteMessage")) std::exit(1);  // or it would be answered again and again
            ++answered;
        } else {
            ++index;
        }
        message->Release();
    }
    return answered;
}

// Whether an argument is a whole number that an int holds.
bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of(L"0123456789") == text.npos;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring count = argc > 3 ? argv[3] : L"0";
    const std::wstring milliseconds = argc > 4 ? argv[4] : L"5000";
    if (argc < 3 || !IsNumber(count) || !IsNumber(milliseconds)) {
        std::puts(R"(answer_example COM5 "The answer" [number of messages] [pause in ms])");
        return 2;
    }
    const int wanted = std::stoi(count);
    const DWORD pause = std::stoul(milliseconds);
    SetConsoleOutputCP(CP_UTF8);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    gsm = New<SmsProtocolGsm, ISmsProtocolGsm>();
    gsm->put_Device(Text(argv[1]));
    ISmsMessage* answer = New<SmsMessage, ISmsMessage>();
    answer->put_Data(Text(argv[2]));
    answer->put_Format(std::regex_search(argv[2], beyondGsm) ? asMESSAGEFORMAT_UNICODE_MULTIPART
                                                             : asMESSAGEFORMAT_TEXT_MULTIPART);
    for (int answered = 0;;) {
        LONG count = 0;
        gsm->Receive(&count);
        if (Failed(L"Receive")) return 1;
        answered += AnswerWaiting(answer, wanted == 0 ? INT_MAX : wanted - answered);
        if (wanted > 0 && answered >= wanted) {
            std::printf("Done: %d answered\n", answered);
            break;
        }
        Sleep(pause);
    }
    answer->Release();
    gsm->Release();
    CoUninitialize();
    return 0;
}
