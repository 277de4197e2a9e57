// Texts in the registry.
#pragma once
#include <string>
#include <windows.h>

// Empty when there is none.
inline std::string RegistryText(HKEY root, const std::string& key, const char* name) {
    DWORD size = 0;
    if (::RegGetValueA(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        return {};
    }
    std::string text(size, '\0');
    if (::RegGetValueA(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    text.resize(size == 0 ? 0 : size - 1);
    return text;
}
