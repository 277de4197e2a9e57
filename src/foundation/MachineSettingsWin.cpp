#include "foundation/MachineSettings.h"
#include "foundation/RegistryTextWin.h"
#include "foundation/Text.h"

namespace {

constexpr const char* kKey = "Software\\Quorvane\\Velqar\\";

std::string ReadText(const char* name) { return RegistryText(HKEY_LOCAL_MACHINE, kKey, name); }

}  // namespace

std::string MachineAdvancedSettings() { return ReadText("AdvancedSettings"); }

std::int32_t MachineSegmentationTimeout() {
    DWORD value = 0;
    DWORD size = sizeof value;
    if (::RegGetValueA(HKEY_LOCAL_MACHINE, kKey, "SegmentationTimeout", RRF_RT_REG_DWORD, nullptr, &value,
                       &size) == ERROR_SUCCESS) {
        return static_cast<std::int32_t>(value);
    }
    const std::string text = ReadText("SegmentationTimeout");
    return text.empty() ? 3600 : ToInt(text);
}

std::string MachineInstallRoot() { return ReadText("InstallRoot"); }
