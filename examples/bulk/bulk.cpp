// Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became
// of it. Early bound through the vtable; NeltCtrl.h comes from the type library: it is in include/ of the
// package.
#include "NeltCtrl.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>
#include <windows.h>

namespace {

using Clock = std::chrono::steady_clock;

ISmsProtocolSmpp* smpp = nullptr;

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
    std::wstring Copy() const { return std::wstring(text_, SysStringLen(text_)); }

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

bool Failed(const std::string& what) {
    LONG error = 0;
    smpp->get_LastError(&error);
    if (error == 0) return false;
    Text text;
    smpp->GetErrorDescription(error, &text);
    std::printf("%s: %ld %ls\n", what.c_str(), error, text.Copy().c_str());
    return true;
}

struct State {
    LONG status = 0;
    LONG completed = 0;
    std::wstring text;
};

State StateOf(const std::wstring& reference) {
    VARIANT item;
    smpp->QueryStatus(Text(reference.c_str()), 0, &item);
    if (Failed("QueryStatus failed")) std::exit(1);
    auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
    State state;
    Text text;
    status->get_Status(&state.status);
    status->get_IsCompleted(&state.completed);
    status->get_StatusDescription(&text);
    status->Release();
    state.text = text.Copy();
    return state;
}

std::vector<std::string> ReadNumbers(const wchar_t* name) {
    std::vector<std::string> numbers;
    std::ifstream file{std::filesystem::path(name)};
    if (!file) {
        std::printf("%ls cannot be read\n", name);
        std::exit(1);
    }
    for (std::string line; std::getline(file, line);) {
        std::erase_if(line, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
        if (!line.empty()) numbers.push_back(line);
    }
    return numbers;
}

// The references of what was sent.
std::vector<std::wstring> SendAll(const std::vector<std::string>& recipients, const wchar_t* text) {
    ISmsMessage* message = New<SmsMessage, ISmsMessage>();
    message->put_Data(Text(text));
    message->put_Format(std::regex_search(text, beyondGsm) ? asMESSAGEFORMAT_UNICODE_MULTIPART
                                                           : asMESSAGEFORMAT_TEXT_MULTIPART);
    message->put_RequestDeliveryStatus(1);
    VARIANT argument;
    argument.vt = VT_DISPATCH;
    argument.pdispVal = message;
    std::vector<std::wstring> sent;
    const Clock::time_point started = Clock::now();
    for (const std::string& recipient : recipients) {
        message->put_Recipient(Text(std::wstring(recipient.begin(), recipient.end()).c_str()));
        Text reference;
        smpp->Send(&argument, &reference);
        if (!Failed(recipient + " not sent")) sent.push_back(reference.Copy());
    }
    message->Release();
    // Send only queues. The server has answered the last message when its status is no longer this one.
    while (!sent.empty() && StateOf(sent.back()).status == asDELIVERYSTATUS_SUBMITREQUESTED) smpp->Sleep(10);
    const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
    const std::size_t timed = sent.size() > 1 ? sent.size() - 1 : sent.size();  // the first goes at once
    std::printf("Sent %zu in %.1f s: %.1f messages/s\n", sent.size(), seconds,
                static_cast<double>(timed) / seconds);
    return sent;
}

// How many are in which state: as long as there are open ones, but no more than a minute.
std::map<std::wstring, std::size_t> StatesOf(const std::vector<std::wstring>& sent) {
    for (int rounds = 1;; ++rounds) {
        std::map<std::wstring, std::size_t> states;
        bool open = false;
        for (const std::wstring& reference : sent) {
            const State state = StateOf(reference);
            open = open || state.completed == 0;
            ++states[state.text];
        }
        if (!open || rounds == 120) return states;
        smpp->Sleep(500);
    }
}

// Whether an argument is a whole number that an int holds.
bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.size() < 10 && text.find_first_not_of(L"0123456789") == text.npos;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring rate = argc > 7 ? argv[7] : L"10";
    if (argc < 7 || !IsNumber(argv[2]) || !IsNumber(rate)) {
        std::puts(
            R"(bulk_example 127.0.0.1 2775 user password numbers.txt "The text" [messages per second])");
        return 2;
    }
    const std::vector<std::string> recipients = ReadNumbers(argv[5]);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    smpp = New<SmsProtocolSmpp, ISmsProtocolSmpp>();
    smpp->put_Server(Text(argv[1]));
    smpp->put_ServerPort(std::stoi(argv[2]));
    smpp->put_SystemID(Text(argv[3]));
    smpp->put_SystemPassword(Text(argv[4]));
    smpp->put_SystemCharSet(asSMPPCHARSET_GSM);
    smpp->put_SystemThroughput(std::stoi(rate));
    smpp->Connect();
    if (Failed("Connect failed")) return 1;
    const std::vector<std::wstring> sent = SendAll(recipients, argv[6]);
    std::map<std::wstring, std::size_t> states = StatesOf(sent);
    smpp->Disconnect();
    smpp->Release();
    CoUninitialize();
    for (const auto& [state, count] : states) std::printf("%ls: %zu\n", state.c_str(), count);
    if (sent.size() < recipients.size()) std::printf("Not sent: %zu\n", recipients.size() - sent.size());
    const std::size_t delivered = states[L"Delivered"];
    if (delivered < recipients.size()) return 1;
    std::printf("Done: all %zu delivered\n", delivered);
    return 0;
}
