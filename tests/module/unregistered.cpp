// unregistered [MANIFEST]: uses every class of the component that lies beside it, through the manifest that
// the program carries or else that of the file, and prints a line for each step.
#include "Com.h"

#include <cstdio>
#include <thread>

namespace {

struct Row {
    const wchar_t* name;
    const wchar_t* progId;
    CLSID clsid;
    IID iid;
};

const Row kRows[] = {
#define CREATABLE(name, progId, description, clsid) \
    {L"" #name, L"" progId, __uuidof(name), __uuidof(I##name)},
#include "frame/ClassTable.inc"
};

HRESULT Make(const CLSID& clsid, const IID& iid, Com<IUnknown>& object) {
    return ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid,
                              reinterpret_cast<void**>(object.out()));
}

// The system may give an id of its own for a name, which leads to the class as well.
bool Leads(const std::wstring& progId, const IID& iid) {
    CLSID found{};
    Com<IUnknown> object;
    return SUCCEEDED(::CLSIDFromProgID(progId.c_str(), &found)) && SUCCEEDED(Make(found, iid, object));
}

// The name of the interface, as its description in the type library has it.
std::wstring Described(IDispatch* object) {
    Com<ITypeInfo> info;
    Bstr name;
    if (SUCCEEDED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out())))
        info->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr);
    return name.str();
}

// What is wrong with a class.
const char* Use(const Row& row) {
    Com<IUnknown> early;
    Com<IDispatch> late;
    const HRESULT created = Make(row.clsid, row.iid, early);
    if (created == REGDB_E_CLASSNOTREG) return "not registered";
    if (FAILED(created)) return "cannot be created";
    if (!Leads(row.progId, row.iid) || !Leads(row.progId + std::wstring(L".1"), row.iid))
        return "not found by name";
    if (FAILED(early->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(late.out()))))
        return "not automatable";
    return Described(late.get()) == std::wstring(L"I") + row.name ? "works" : "not described";
}

// Through the interface: in this apartment the object itself, from another the system's marshaller.
const char* UseEarly() {
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    Bstr recipient;
    message->put_Recipient(Bstr(L"+31612345678"));
    message->get_Recipient(recipient.out());
    return recipient.str() == L"+31612345678" ? "works" : "fails";
}

const char* UseLate() {
    const auto message = Create<IDispatch>(L"Quorvane.SmsMessage");
    Variant recipient;
    Call(message.get(), L"Recipient", DISPATCH_PROPERTYPUT, {Variant(std::wstring(L"+31612345678"))},
         nullptr);
    Call(message.get(), L"recipient", DISPATCH_PROPERTYGET, {}, &recipient);
    return recipient.vt == VT_BSTR && std::wstring(recipient.bstrVal) == L"+31612345678" ? "works" : "fails";
}

bool EnterContext(const wchar_t* manifest) {
    ACTCTXW context{};
    context.cbSize = sizeof context;
    context.lpSource = manifest;
    ULONG_PTR cookie = 0;
    const HANDLE made = ::CreateActCtxW(&context);
    return made != INVALID_HANDLE_VALUE && ::ActivateActCtx(made, &cookie);
}

void UseAll(bool fromElsewhere) {
    for (const Row& row : kRows) std::printf("%ls %s\n", row.name, Use(row));
    std::printf("early %s\nlate %s\n", UseEarly(), UseLate());
    if (!fromElsewhere) return;
    // The system makes an apartment for the objects of a thread that has none, and hands out proxies.
    std::thread([] {
        ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        std::printf("elsewhere %s %s\n", UseEarly(), UseLate());
        ::CoUninitialize();
    }).join();
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const ComApartment apartment;
    if (argc > 1 && !EnterContext(argv[1])) {
        std::printf("no context: %lu\n", ::GetLastError());
        return 1;
    }
    try {
        UseAll(argc == 1);
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
    return 0;
}
