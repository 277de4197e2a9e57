// connect_many.exe PORT CYCLES...: connects and disconnects so many times each, and after each group prints
// the lowest free handle and waits for a line, so that the process can be looked at from outside.
#include "Com.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    const ComApartment apartment;
    const auto smpp = Create<ISmsProtocolSmpp>(L"Quorvane.SmsProtocolSmpp");
    smpp->put_Server(Bstr(L"127.0.0.1"));
    smpp->put_ServerPort(std::atoi(argv[1]));
    for (int group = 2; group < argc; ++group) {
        for (int i = std::atoi(argv[group]); i > 0; --i) {
            smpp->Connect();
            LONG error = 0;
            smpp->get_LastError(&error);
            if (error != 0) return 1;
            smpp->Disconnect();
        }
        const HANDLE lowest = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        std::printf("%u\n", static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(lowest)));
        std::fflush(stdout);
        ::CloseHandle(lowest);
        (void)std::getchar();
    }
    return 0;
}
