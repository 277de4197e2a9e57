// Self-registration: the keys of the creatable classes below HKEY_CLASSES_ROOT, and the type library.
#pragma once
#include <windows.h>

HRESULT RegisterServer();
HRESULT UnregisterServer();
