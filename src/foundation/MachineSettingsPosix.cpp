// The native build has no registry: every setting has its default.
#include "foundation/MachineSettings.h"

std::string MachineAdvancedSettings() { return {}; }
std::int32_t MachineSegmentationTimeout() { return 3600; }
std::string MachineInstallRoot() { return {}; }
