// As a host does that gives every job a thread and an apartment of its own: each loads the module, makes an
// object, and leaves nothing behind. `load_many.exe ROUNDS` ends with 0 when every round found its object.
#include "Com.h"

#include <cstdlib>
#include <thread>

int main(int count, char** arguments) {
    const int rounds = count > 1 ? std::atoi(arguments[1]) : 1;
    int made = 0;
    for (int round = 0; round < rounds; ++round) {
        std::thread([&made] {
            ::CoInitialize(nullptr);
            CLSID clsid{};
            IUnknown* object = nullptr;
            if (SUCCEEDED(::CLSIDFromProgID(L"Quorvane.SmsMessage", &clsid)) &&
                SUCCEEDED(::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                             reinterpret_cast<void**>(&object)))) {
                object->Release();
                ++made;
            }
            ::CoUninitialize();
        }).join();
    }
    return made == rounds ? 0 : 1;
}
