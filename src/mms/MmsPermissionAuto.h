// Reading the class MmsPermission.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/ValuesAuto.h"
#include "mms/MmsPermission.h"

#include <optional>

// The MmsPermission in a VARIANT, whoever implements it; nothing when there is no object, 33005 when the
// object is another.
ResultCode CopyFromAutomation(const VARIANT* value, std::optional<CMmsPermission>& permission);
