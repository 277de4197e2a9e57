// Small helpers of the COM clients.
#pragma once
#include "NeltCtrl.h"

#include <oaidl.h>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

class ComApartment {
  public:
    ComApartment() { ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ComApartment() { ::CoUninitialize(); }
};

class Bstr {
  public:
    Bstr() = default;
    explicit Bstr(const std::wstring& text)
        : text_(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { ::SysFreeString(text_); }
    operator BSTR() const { return text_; }
    BSTR* out() {
        ::SysFreeString(text_);
        text_ = nullptr;
        return &text_;
    }
    std::wstring str() const {
        return text_ == nullptr ? std::wstring() : std::wstring(text_, ::SysStringLen(text_));
    }

  private:
    BSTR text_ = nullptr;
};

class Variant : public VARIANT {
  public:
    Variant() { ::VariantInit(this); }
    explicit Variant(LONG value) : Variant() {
        vt = VT_I4;
        lVal = value;
    }
    explicit Variant(const std::wstring& text) : Variant() {
        vt = VT_BSTR;
        bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    explicit Variant(IDispatch* object) : Variant() {
        vt = VT_DISPATCH;
        pdispVal = object;
        if (object != nullptr) object->AddRef();
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { ::VariantClear(this); }
};

template <class Interface>
class Com {
  public:
    Com() = default;
    explicit Com(Interface* owned) : object_(owned) {}
    Com(Com&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com() {
        if (object_ != nullptr) object_->Release();
    }
    Interface* operator->() const { return object_; }
    Interface* get() const { return object_; }
    Interface** out() { return &object_; }

  private:
    Interface* object_ = nullptr;
};

template <class Interface>
Com<Interface> Create(const wchar_t* progId) {
    CLSID clsid{};
    Com<Interface> object;
    if (FAILED(::CLSIDFromProgID(progId, &clsid)) ||
        FAILED(::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                  reinterpret_cast<void**>(object.out())))) {
        throw std::runtime_error("cannot create");
    }
    return object;
}

// A late-bound call by name; the arguments stand in their written order.
inline HRESULT Call(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments,
                    VARIANT* outcome) {
    auto* text = const_cast<LPOLESTR>(name);
    DISPID id = 0;
    if (const HRESULT found = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
        FAILED(found)) {
        return found;
    }
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{reversed.data(), flags == DISPATCH_PROPERTYPUT ? &put : nullptr,
                          static_cast<UINT>(reversed.size()), flags == DISPATCH_PROPERTYPUT ? 1U : 0U};
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, outcome, nullptr, nullptr);
}
