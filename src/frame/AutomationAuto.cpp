#include "frame/AutomationAuto.h"

#include "foundation/CodePage.h"

namespace {

std::u16string_view View(BSTR text) {
    if (text == nullptr) return {};
    return {reinterpret_cast<const char16_t*>(text), ::SysStringLen(text)};
}

template <class Value>
HRESULT GiveText(BSTR* out, Value text) noexcept {
    if (out == nullptr) return S_OK;
    try {
        *out = NewBstr(text);
    } catch (...) {
        *out = nullptr;
    }
    return S_OK;
}

}  // namespace

std::string AnsiOf(BSTR text) { return ToAnsi(View(text)); }
std::u16string WideOf(BSTR text) { return std::u16string(View(text)); }

BSTR NewBstr(std::string_view ansi) { return NewBstr(FromAnsi(ansi)); }
BSTR NewBstr(std::u16string_view text) {
    return ::SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

HRESULT Give(BSTR* out, std::string_view ansi) noexcept { return GiveText(out, ansi); }
HRESULT Give(BSTR* out, std::u16string_view text) noexcept { return GiveText(out, text); }

HRESULT Store(std::string& field, BSTR text) noexcept {
    try {
        field = AnsiOf(text);
    } catch (...) {  // a setter has no result code; what cannot be stored is not stored
    }
    return S_OK;
}

HRESULT Store(std::u16string& field, BSTR text) noexcept {
    try {
        field = View(text);
    } catch (...) {  // as above
    }
    return S_OK;
}

IUnknown* ObjectOf(const VARIANT* value, const IID& iid) noexcept {
    constexpr int kDeepest = 16;
    for (int depth = 0; value != nullptr && value->vt == (VT_VARIANT | VT_BYREF) && depth < kDeepest;
         ++depth) {
        value = value->pvarVal;
    }
    if (value == nullptr) return nullptr;
    IUnknown* object = nullptr;
    switch (value->vt) {
        case VT_DISPATCH:
            object = value->pdispVal;
            break;
        case VT_UNKNOWN:
            object = value->punkVal;
            break;
        case VT_DISPATCH | VT_BYREF:
            object = value->ppdispVal != nullptr ? *value->ppdispVal : nullptr;
            break;
        case VT_UNKNOWN | VT_BYREF:
            object = value->ppunkVal != nullptr ? *value->ppunkVal : nullptr;
            break;
        default:
            break;
    }
    void* wanted = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(iid, &wanted))) return nullptr;
    return static_cast<IUnknown*>(wanted);
}

HRESULT GiveObject(VARIANT* out, IDispatch* object) noexcept {
    ::VariantInit(out);
    out->vt = VT_DISPATCH;
    out->pdispVal = object;
    return S_OK;
}
