// Messages of 300 KB through the MM1 class of the registered module under Wine, beside a bare WinHTTP loop
// that posts the same octets: mm1_bench.exe PORT, with the port of the lab's MMS centre.
#include "BareHttp.h"

namespace {

constexpr std::size_t kPicture = 300'000;  // octets

class Channel {
  public:
    explicit Channel(int port) {
        const auto slide = Create<IMmsSlide>(L"Quorvane.MmsSlide");
        SAFEARRAY* octets = ::SafeArrayCreateVector(VT_UI1, 0, kPicture);
        Variant picture;
        picture.vt = VT_ARRAY | VT_UI1;
        picture.parray = octets;
        slide->AddAttachmentData(Bstr(L"picture.jpg"), &picture);
        message_->AddRecipient(Bstr(L"+31612345678"), 0);
        Variant added(slide.get());
        message_->AddSlide(&added);
        mm1_->put_AdvancedSettings(Bstr(L"UseExistingConnection=1"));
        mm1_->put_ProviderMMSC(Bstr(L"http://127.0.0.1:" + std::to_wstring(port) + L"/mms"));
        mm1_->Connect();
    }
    bool Post() {
        LONG code = 0;
        mm1_->Send(&argument_);
        mm1_->get_LastError(&code);
        return code == 0;
    }
    // What the last message went out as.
    std::string Octets() {
        Bstr encoded;
        message_->get_EncodedMessage(encoded.out());
        std::string octets;
        for (const wchar_t c : encoded.str()) octets += static_cast<char>(c);
        return octets;
    }

  private:
    Com<IMmsProtocolMm1> mm1_ = Create<IMmsProtocolMm1>(L"Quorvane.MmsProtocolMm1");
    Com<IMmsMessage> message_ = Create<IMmsMessage>(L"Quorvane.MmsMessage");
    Variant argument_{message_.get()};
};

}  // namespace

int main(int argc, char** argv) {
    const ComApartment apartment;
    const int port = argc > 1 ? std::atoi(argv[1]) : 8090;
    Channel channel(port);
    (void)bare::Rate(channel, 1);
    bare::Compare("MM1, 300 KB",
                  BareLoop{static_cast<INTERNET_PORT>(port), L"/mms",
                           L"Content-Type: application/vnd.wap.mms-message", channel.Octets()},
                  channel, 50);
    return 0;
}
