// Messages through the HTTP class of the registered module under Wine, beside a bare WinHTTP loop of the same
// requests: http_bench.exe PORT, with the port of a server that answers "OK ..." to POST and GET of /ok. A
// POST goes out in two pieces, so that both wait for the peer's delayed acknowledgement; a GET shows what the
// channel itself costs.
#include "BareHttp.h"

namespace {

constexpr const wchar_t* kForm = L"Content-Type: application/x-www-form-urlencoded";

class Channel {
  public:
    Channel(int port, const std::wstring& urlTemplate) {
        http_->put_ProviderHost(Bstr(L"127.0.0.1"));
        http_->put_ProviderPort(port);
        http_->put_URLText(Bstr(urlTemplate));
        http_->put_ProviderSuccessResponse(Bstr(L"OK"));
        message_->put_Recipient(Bstr(L"+31612345678"));
        message_->put_Data(Bstr(std::wstring(160, L'x')));
    }
    bool Post() {
        LONG code = 0;
        http_->Send(&argument_);
        http_->get_LastError(&code);
        return code == 0;
    }

  private:
    Com<ISmsProtocolHttp> http_ = Create<ISmsProtocolHttp>(L"Quorvane.SmsProtocolHttp");
    Com<ISmsMessage> message_ = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    Variant argument_{message_.get()};
};

}  // namespace

int main(int argc, char** argv) {
    const ComApartment apartment;
    const int port = argc > 1 ? std::atoi(argv[1]) : 8080;
    const auto at = static_cast<INTERNET_PORT>(port);
    bare::Compare("POST", BareLoop{at, L"/ok", kForm, "to=%2B31612345678&text=" + std::string(160, 'x')},
                  Channel{port, L"ok?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%"}, 100);
    bare::Compare("GET", BareLoop{at, L"/ok", L"", ""}, Channel{port, L"ok"}, 1000);
    return 0;
}
