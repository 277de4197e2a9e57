#include "frame/VrmBase.h"

#include "foundation/MachineSettings.h"
#include "foundation/Text.h"

std::size_t CVrmBase::FindAdvancedSetting(std::string_view name) {
    if (!isMachineAsked_ && advancedSettings_.empty()) advancedSettings_ = MachineAdvancedSettings();
    isMachineAsked_ = true;
    return FindNoCase(advancedSettings_, name);
}

bool CVrmBase::HasAdvancedSetting(std::string_view keyword) {
    return FindAdvancedSetting(keyword) != std::string::npos;
}

std::int32_t CVrmBase::AdvancedSetting(std::string_view name, std::int32_t fallback) {
    const std::size_t at = FindAdvancedSetting(name);
    if (at == std::string::npos) return fallback;
    std::string_view rest = std::string_view(advancedSettings_).substr(at + name.size());
    rest = rest.substr(0, rest.find_first_of(";,|\r\n"));
    const std::size_t value = rest.find_first_not_of(" \t=:");
    return value == std::string_view::npos ? 0 : ToInt(rest.substr(value));
}

void CVrmBase::GuardPasswords(std::vector<std::string> passwords) {
    if (AdvancedSetting("MaskPasswords", 0) == 0) passwords.clear();
    HidePasswords(std::move(passwords));
}
