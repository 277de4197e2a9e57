// Calls per second of one property, through IDispatch::Invoke and through the vtable.
#include "Com.h"

#include <chrono>
#include <cstdio>

namespace {

template <class Work>
void Measure(const char* name, Work work) {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    long calls = 0;
    while (steady_clock::now() - start < seconds(1)) {
        for (int i = 0; i < 1000; ++i) work();
        calls += 1000;
    }
    const double elapsed = duration<double>(steady_clock::now() - start).count();
    std::printf("%-22s %12.0f calls/s\n", name, static_cast<double>(calls) / elapsed);
}

}  // namespace

int main() {
    const ComApartment apartment;
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    DISPID format = 105;
    DISPID put = DISPID_PROPERTYPUT;
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = 20;
    DISPPARAMS with{&value, &put, 1, 1};
    DISPPARAMS none{};
    Measure("put through Invoke", [&] {
        message->Invoke(format, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &with, nullptr, nullptr,
                        nullptr);
    });
    Measure("get through Invoke", [&] {
        VARIANT out{};
        message->Invoke(format, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &out, nullptr,
                        nullptr);
    });
    LONG number = 0;
    Measure("put through the vtable", [&] { message->put_Format(20); });
    Measure("get through the vtable", [&] { message->get_Format(&number); });
    const Bstr text(L"+31612345678");
    Measure("put text, vtable", [&] { message->put_Recipient(text); });
    Measure("get text, vtable", [&] {
        BSTR out = nullptr;
        message->get_Recipient(&out);
        ::SysFreeString(out);
    });
    return 0;
}
