#include "frame/DispatchNamesAuto.h"

#include <algorithm>

namespace {

constexpr wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

// Whether a name in lower case stands before another name.
bool Before(const std::wstring& name, const OLECHAR* other) {
    for (const wchar_t c : name) {
        if (c != Lower(*other)) return c < Lower(*other);
        ++other;
    }
    return *other != L'\0';
}

}  // namespace

DispatchNames::DispatchNames(ITypeInfo* info) noexcept {
    try {
        Read(info);
    } catch (...) {  // without memory the names stay with the type library
        rows_.clear();
    }
}

void DispatchNames::Read(ITypeInfo* info) {
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &function)); ++i) {
        const DISPID id = function->memid;
        const bool forScripts = (function->wFuncFlags & FUNCFLAG_FRESTRICTED) == 0;
        info->ReleaseFuncDesc(function);
        if (!forScripts) continue;  // AddRef and the like
        BSTR name = nullptr;
        if (FAILED(info->GetDocumentation(id, &name, nullptr, nullptr, nullptr)) || name == nullptr) continue;
        std::wstring lower(name, ::SysStringLen(name));
        ::SysFreeString(name);
        std::ranges::transform(lower, lower.begin(), Lower);
        rows_.push_back({std::move(lower), id});
    }
    std::ranges::sort(rows_, {}, &Row::name);
}

DISPID DispatchNames::Find(const OLECHAR* name) const {
    const auto row = std::partition_point(
        rows_.begin(), rows_.end(), [name](const Row& candidate) { return Before(candidate.name, name); });
    if (row == rows_.end()) return DISPID_UNKNOWN;
    const wchar_t* at = name;
    for (const wchar_t c : row->name) {
        if (c != Lower(*at++)) return DISPID_UNKNOWN;
    }
    return *at == L'\0' ? row->id : DISPID_UNKNOWN;
}
