// Outside Windows there is no Remote Access Service: loading says so.
#include "foundation/ras/RasPlatform.h"

#include <arpa/inet.h>

namespace {

class NoRas final : public RasPlatform {
  public:
    bool Load() override { return false; }
    std::uint32_t SetEntryProperties(const std::string&, const ras::EntryProperties&) override {
        return ras::kFunctionMissing;
    }
    std::uint32_t SetDialParameters(const ras::DialParameters&) override { return ras::kFunctionMissing; }
    std::uint32_t GetDialParameters(ras::DialParameters&) override { return ras::kFunctionMissing; }
    std::uint32_t Dial(const ras::DialParameters&, ras::Handle&) override { return ras::kFunctionMissing; }
    std::uint32_t GetState(ras::Handle, std::uint32_t&) override { return ras::kFunctionMissing; }
    std::uint32_t HangUp(ras::Handle) override { return ras::kFunctionMissing; }
    std::uint32_t GetAdapters(std::uint32_t&, std::vector<ras::Adapter>&) override {
        return ras::kFunctionMissing;
    }
    std::uint32_t GetRoutes(std::uint32_t&, std::vector<ras::Route>&) override {
        return ras::kFunctionMissing;
    }
    std::uint32_t CreateRoute(const ras::Route&) override { return ras::kFunctionMissing; }
    std::uint32_t ToAddress(const std::string& text) override { return ::inet_addr(text.c_str()); }
};

}  // namespace

std::unique_ptr<RasPlatform> NewRasPlatform() { return std::make_unique<NoRas>(); }
