// Machine-wide settings: the values under HKEY_LOCAL_MACHINE\Software\Quorvane\Velqar.
#pragma once
#include <cstdint>
#include <string>

// "AdvancedSettings": used by objects whose own advanced settings are empty. Empty when absent.
std::string MachineAdvancedSettings();

// "SegmentationTimeout": seconds that a multipart message waits for its missing parts. 3600 when absent.
std::int32_t MachineSegmentationTimeout();

// "InstallRoot": the folder that the component is installed in. Empty when absent.
std::string MachineInstallRoot();
