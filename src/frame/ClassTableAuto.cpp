#include "frame/ClassTableAuto.h"

#include "NeltCtrl.h"

#include <array>

// Each class defines its own next to its code.
#define CREATABLE(name, progId, description, clsid) IUnknown* Create##name();
#include "frame/ClassTable.inc"

std::span<const CreatableClass> CreatableClasses() {
    static const auto table = std::to_array<CreatableClass>({
#define CREATABLE(name, progId, description, clsid) \
    {&__uuidof(name), L"" progId, L"" description, &Create##name},
#include "frame/ClassTable.inc"
    });
    return table;
}
