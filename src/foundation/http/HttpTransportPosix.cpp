// Outside Windows there is no WinHTTP: the client says so at every open.
#include "foundation/http/HttpTransport.h"

namespace {

class NoTransport final : public HttpTransport {
  public:
    bool IsLoaded() const override { return false; }
    const char* Library() const override { return "winhttp.dll"; }
    std::uint32_t LoadError() const override { return kModuleNotFound; }

    std::uint32_t OpenSession(const std::string&, const std::string&) override { return kModuleNotFound; }
    std::uint32_t Connect(const std::string&, std::uint16_t) override { return kModuleNotFound; }
    std::uint32_t OpenRequest(const std::string&, const std::string&, bool, bool) override {
        return kModuleNotFound;
    }
    std::uint32_t SetCredentials(http::Peer, http::Scheme, const http::Account&) override {
        return kModuleNotFound;
    }
    std::uint32_t Send(const std::string&, std::string_view, std::uint32_t) override {
        return kModuleNotFound;
    }
    std::uint32_t Receive(std::uint32_t) override { return kModuleNotFound; }
    std::uint32_t Status(std::uint32_t&) override { return kModuleNotFound; }
    std::string Read(http::Header) override { return {}; }
    std::uint32_t QuerySchemes(std::uint32_t&) override { return kModuleNotFound; }
    std::uint32_t Available(std::size_t&, std::uint32_t) override { return kModuleNotFound; }
    std::uint32_t ReadBody(char*, std::size_t, std::size_t&) override { return kModuleNotFound; }
    void CloseRequest() override {}
    void Close() override {}
    std::string CertificateFault() const override { return {}; }

  private:
    static constexpr std::uint32_t kModuleNotFound = 126;
};

}  // namespace

std::unique_ptr<HttpTransport> NewHttpTransport() { return std::make_unique<NoTransport>(); }
