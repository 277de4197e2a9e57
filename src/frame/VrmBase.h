// The base of every automatable object: its fixed texts and its advanced settings.
#pragma once
#include "foundation/KorBase.h"

#include <string>
#include <string_view>
#include <vector>

class CVrmBase : public CKorBase {
  public:
    using CKorBase::CKorBase;

    const std::string& AdvancedSettings() const { return advancedSettings_; }
    void SetAdvancedSettings(std::string settings) {
        advancedSettings_ = std::move(settings);
        isMachineAsked_ = false;
    }

    // True when the keyword stands in the advanced settings (of the object, else of the machine).
    bool HasAdvancedSetting(std::string_view keyword);

    // The number that follows the name: "SmppWindowSize=25;..." or "SmppWindowSize 25,...". `fallback` when
    // absent.
    std::int32_t AdvancedSetting(std::string_view name, std::int32_t fallback);

    // Names the object's passwords, which the log then hides if "MaskPasswords=1" is set. Called before
    // anything that may show them is logged.
    void GuardPasswords(std::vector<std::string> passwords);

  private:
    std::size_t FindAdvancedSetting(std::string_view name);

    std::string advancedSettings_;
    bool isMachineAsked_ = false;  // whether empty settings were looked for in the machine's
};
