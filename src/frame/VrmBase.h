// The base of every automatable object: its fixed texts and its advanced settings.
#pragma once
#include "frame/KorBase.h"

#include <string>
#include <string_view>

namespace product {
inline constexpr const char* kVersion = "5.3 (x64)";
inline constexpr const char* kBuild = "5.3.10.1123 (x64)";
inline constexpr const char* kModule = "NeltCtrlx64.dll";
}  // namespace product

class CVrmBase : public CKorBase {
  public:
    using CKorBase::CKorBase;

    const std::string& AdvancedSettings() const { return advancedSettings_; }
    void SetAdvancedSettings(std::string settings) { advancedSettings_ = std::move(settings); }

    // True when the keyword stands in the advanced settings (of the object, else of the machine).
    bool HasAdvancedSetting(std::string_view keyword);

    // The number that follows the name: "SmppWindowSize=25;..." or "SmppWindowSize 25,...". `fallback` when
    // absent.
    std::int32_t AdvancedSetting(std::string_view name, std::int32_t fallback);

  private:
    std::size_t FindAdvancedSetting(std::string_view name);

    std::string advancedSettings_;
};
