#include "foundation/MachineSettings.h"
#include "foundation/Text.h"

#include <windows.h>

namespace {

constexpr const char* kKey = "Software\\Quorvane\\Velqar\\";

std::string ReadText(const char* name) {
    DWORD size = 0;
    if (::RegGetValueA(HKEY_LOCAL_MACHINE, kKey, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    std::string text(size, '\0');
    if (::RegGetValueA(HKEY_LOCAL_MACHINE, kKey, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    text.resize(size == 0 ? 0 : size - 1);
    return text;
}

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
