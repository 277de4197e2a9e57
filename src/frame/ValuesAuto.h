// Values at the automation interface: owners of what COM hands over, and the conversions between BSTR, LONG
// and VARIANT and the types of the core. The type of the core's side chooses the conversion: `std::string` is
// text in the system's code page, `std::u16string` is text as it is, `Octets` go one to one, `bool` is a flag
// (-1 or 0), and any other integer is a number.
#pragma once
#include "foundation/Octets.h"

#include <concepts>
#include <cstdint>
#include <oaidl.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <windows.h>

// --- owners

class BstrOwner {
  public:
    explicit BstrOwner(BSTR owned = nullptr) noexcept : text_(owned) {}
    BstrOwner(const BstrOwner&) = delete;
    BstrOwner& operator=(const BstrOwner&) = delete;
    ~BstrOwner() { ::SysFreeString(text_); }

    BSTR Get() const { return text_; }
    // Where a call may put its text; what was there before is freed.
    BSTR* Receive() {
        ::SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

  private:
    BSTR text_;
};

class VariantOwner {
  public:
    VariantOwner() noexcept { ::VariantInit(&value_); }
    VariantOwner(const VariantOwner&) = delete;
    VariantOwner& operator=(const VariantOwner&) = delete;
    ~VariantOwner() { ::VariantClear(&value_); }

    const VARIANT& Get() const { return value_; }
    VARIANT Detach() { return std::exchange(value_, VARIANT{}); }
    // Where a call may put its value; what was there before is freed.
    VARIANT* Receive() {
        ::VariantClear(&value_);
        return &value_;
    }

  private:
    VARIANT value_;
};

template <class Interface>
class ComPointer {
  public:
    explicit ComPointer(Interface* owned = nullptr) noexcept : pointer_(owned) {}
    ComPointer(ComPointer&& other) noexcept : pointer_(other.Detach()) {}
    ComPointer& operator=(ComPointer&& other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPointer() {
        if (pointer_ != nullptr) pointer_->Release();
    }

    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    Interface* Detach() { return std::exchange(pointer_, nullptr); }

  private:
    Interface* pointer_;
};

// --- reading; a null BSTR is an empty text

std::string AnsiOf(BSTR text);
std::u16string WideOf(BSTR text);
// The low 8 bits of each character.
Octets OctetsOf(BSTR text);

// The value in a VARIANT through every form of reference; VT_EMPTY where there is none, or where references
// lead nowhere or in circles. What the value refers to stays the caller's.
VARIANT ValueIn(const VARIANT* value) noexcept;

// An integer of up to 32 bits, a double (rounded, its low 32 bits), or a boolean as 0 or 1.
std::optional<std::uint32_t> IntegerIn(const VARIANT& value) noexcept;

// The octets of an array of one dimension, whatever its bounds: the low 8 bits of each element. Elements may
// be integers of any width or, as scripts make them, VARIANTs that hold numbers or nothing (0). Nothing when
// the value is no such array.
std::optional<Octets> OctetsIn(const VARIANT* value);

// The object in a VARIANT, which stays the caller's; null when there is none.
IUnknown* ObjectIn(const VARIANT* value) noexcept;

// The interface of an object; null when it has none such.
template <class Interface>
ComPointer<Interface> InterfaceOf(IUnknown* object) noexcept {
    void* found = nullptr;
    const bool has = object != nullptr && SUCCEEDED(object->QueryInterface(__uuidof(Interface), &found));
    return ComPointer<Interface>(has ? static_cast<Interface*>(found) : nullptr);
}

// --- making

BSTR NewBstr(std::string_view ansi);
BSTR NewBstr(std::u16string_view text);
BSTR NewBstr(OctetsView octets);
inline BSTR NewBstr(const Octets& octets) { return NewBstr(OctetsView{octets.bytes}); }

// An array of VT_UI1 from 0.
VARIANT NewByteArray(const Octets& octets);

// --- giving; an output that is taken over by the caller

template <class Text>
requires requires(const Text& text) { NewBstr(text); }
void Put(BSTR* out, const Text& text) { *out = NewBstr(text); }
inline void Put(LONG* out, bool flag) { *out = flag ? -1 : 0; }
template <std::integral Number>
void Put(LONG* out, Number value) {
    *out = static_cast<LONG>(value);
}
inline void Put(VARIANT* out, VariantOwner& value) { *out = value.Detach(); }
// Null is "Nothing".
inline void Put(VARIANT* out, ComPointer<IDispatch>& object) {
    ::VariantInit(out);
    out->vt = VT_DISPATCH;
    out->pdispVal = object.Detach();
}
// An output that is left empty unless there is something to give.
template <class Out, class Value>
void Put(Out* out, std::optional<Value>& value) {
    if (value) Put(out, *value);
}

// What an output holds until something is put into it.
template <class Out, class Value>
void PutNothing(Out* out, const Value& /*forOverload*/) {
    *out = {};
}
inline void PutNothing(VARIANT* out, const ComPointer<IDispatch>& /*forOverload*/) {
    ComPointer<IDispatch> nothing;
    Put(out, nothing);
}

// Puts what `work` gives into an output, which may be null. Always S_OK.
template <class Out, class Work>
HRESULT GiveResult(Out* out, Work work) noexcept {
    if (out == nullptr) return S_OK;
    try {
        Put(out, work());
    } catch (...) {  // a getter has no result code
        *out = {};
    }
    return S_OK;
}

template <class Out, class Value>
HRESULT Give(Out* out, const Value& value) noexcept {
    return GiveResult(out, [&value]() -> const Value& { return value; });
}

// --- taking and storing a value as it is

inline void Take(std::string& field, BSTR text) { field = AnsiOf(text); }
inline void Take(std::u16string& field, BSTR text) { field = WideOf(text); }
inline void Take(Octets& field, BSTR octets) { field = OctetsOf(octets); }
inline void Take(bool& field, LONG flag) { field = flag != 0; }
template <std::integral Number>
void Take(Number& field, LONG value) {
    field = static_cast<Number>(value);
}

// Runs a setter, which has no result code: what cannot be stored is not stored. Always S_OK.
template <class Setter>
HRESULT Storing(Setter setter) noexcept {
    try {
        setter();
    } catch (...) {  // as said
    }
    return S_OK;
}

template <class Field, class Value>
HRESULT Store(Field& field, Value value) noexcept {
    return Storing([&field, value] { Take(field, value); });
}
