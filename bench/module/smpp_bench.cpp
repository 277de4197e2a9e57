// The SMPP class of the registered module under Wine, beside the minimal client: smpp_bench.exe PORT
// [WINDOW COUNT], with the port of smpp_sink; without a window the usual three and then connecting alone.
#include "Com.h"
#include "MinimalClient.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void Session(std::uint16_t port, int window, int count, double minimal) {
    const auto smpp = Create<ISmsProtocolSmpp>(L"Quorvane.SmsProtocolSmpp");
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    smpp->put_Server(Bstr(L"127.0.0.1"));
    smpp->put_ServerPort(port);
    smpp->put_AdvancedSettings(Bstr(L"SmppWindowSize=" + std::to_wstring(window)));
    message->put_Recipient(Bstr(L"+31612345678"));
    message->put_Data(Bstr(std::wstring(160, L'x')));
    smpp->Connect();
    Variant argument(message.get());
    const double start = Now();
    Bstr reference;
    for (int i = 0; i < count; ++i) smpp->Send(&argument, reference.out());
    const double queued = Now();
    for (LONG completed = 0; completed == 0;) {
        VARIANT item{};
        smpp->QueryStatus(reference, 0, &item);
        if (item.pdispVal == nullptr) break;
        auto* status = static_cast<ISmsDeliveryStatus*>(item.pdispVal);
        status->get_IsCompleted(&completed);
        status->Release();
        if (completed == 0) ::Sleep(1);
    }
    const double rate = count / (Now() - start);
    std::printf("window %3d: session %8.0f/s, minimal client %8.0f/s, ratio %.2f, queued %8.0f/s\n", window,
                rate, minimal, rate / minimal, count / (queued - start));
    smpp->Disconnect();
}

}  // namespace

int main(int argc, char** argv) {
    const ComApartment apartment;
    const auto port = static_cast<std::uint16_t>(argc > 1 ? std::atoi(argv[1]) : 2775);
    const auto compare = [port](int window, int count) {
        const double start = Now();
        if (!RunMinimalClient(port, window, count)) std::exit(1);
        Session(port, window, count, count / (Now() - start));
    };
    if (argc > 3) {
        compare(std::atoi(argv[2]), std::atoi(argv[3]));
        return 0;
    }
    compare(1, 20'000);
    compare(10, 100'000);
    compare(100, 100'000);
    const auto smpp = Create<ISmsProtocolSmpp>(L"Quorvane.SmsProtocolSmpp");
    smpp->put_Server(Bstr(L"127.0.0.1"));
    smpp->put_ServerPort(port);
    const double start = Now();
    for (int i = 0; i < 1000; ++i) {
        smpp->Connect();
        smpp->Disconnect();
    }
    std::printf("1000 connects: %.1f ms each\n", Now() - start);
    return 0;
}
