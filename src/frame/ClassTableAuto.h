// The creatable classes. One row drives class objects, registration and unregistration.
#pragma once
#include <span>
#include <windows.h>

struct CreatableClass {
    const CLSID* clsid;
    const wchar_t* progId;       // version-independent; the other form ends in ".1"
    const wchar_t* description;  // "SmsMessage Class"
    IUnknown* (*create)();       // a new object with one reference
};

std::span<const CreatableClass> CreatableClasses();
