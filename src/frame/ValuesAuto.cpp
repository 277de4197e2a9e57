#include "frame/ValuesAuto.h"

#include "foundation/CodePage.h"

#include <cstring>

namespace {

std::u16string_view View(BSTR text) {
    if (text == nullptr) return {};
    return {reinterpret_cast<const char16_t*>(text), ::SysStringLen(text)};
}

// The size of a value of the type in a VARIANT or an array; 0 for types that are not read.
constexpr std::size_t SizeOf(VARTYPE type) {
    if ((type & VT_ARRAY) != 0) return sizeof(SAFEARRAY*);
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return 8;
        default:
            return 0;
    }
}

constexpr bool IsInteger(VARTYPE type) {
    return type == VT_I1 || type == VT_UI1 || type == VT_I2 || type == VT_UI2 || type == VT_I4 ||
           type == VT_UI4 || type == VT_INT || type == VT_UINT || type == VT_I8 || type == VT_UI8;
}

// The elements of an array, which stays locked for as long.
class ArrayAccess {
  public:
    explicit ArrayAccess(SAFEARRAY* array)
        : array_(array), locked_(SUCCEEDED(::SafeArrayAccessData(array, &data_))) {}
    ArrayAccess(const ArrayAccess&) = delete;
    ArrayAccess& operator=(const ArrayAccess&) = delete;
    ~ArrayAccess() {
        if (locked_) ::SafeArrayUnaccessData(array_);
    }

    // Null when the array could not be locked.
    template <class Element>
    Element* Data() const {
        return static_cast<Element*>(data_);
    }

  private:
    SAFEARRAY* array_;
    void* data_ = nullptr;
    bool locked_;
};

bool TakeElements(const VARIANT* elements, std::string& bytes) {
    for (char& octet : bytes) {
        const VARIANT element = ValueIn(elements++);
        const std::optional<std::uint32_t> number = element.vt == VT_EMPTY ? 0 : IntegerIn(element);
        if (!number) return false;
        octet = static_cast<char>(*number);
    }
    return true;
}

// Little-endian integers, of which the first octet is the lowest.
void TakeIntegers(const char* elements, std::size_t width, std::string& bytes) {
    if (width == 1) {
        std::memcpy(bytes.data(), elements, bytes.size());
        return;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = elements[i * width];
}

}  // namespace

std::string AnsiOf(BSTR text) { return ToAnsi(View(text)); }
std::u16string WideOf(BSTR text) { return std::u16string(View(text)); }
Octets OctetsOf(BSTR text) {
    const std::u16string_view characters = View(text);
    Octets octets{std::string(characters.size(), '\0')};
    for (std::size_t i = 0; i < characters.size(); ++i) octets.bytes[i] = static_cast<char>(characters[i]);
    return octets;
}

VARIANT ValueIn(const VARIANT* value) noexcept {
    constexpr int kDeepest = 16;
    for (int depth = 0; value != nullptr && value->vt == (VT_VARIANT | VT_BYREF) && depth < kDeepest;
         ++depth) {
        value = value->pvarVal;
    }
    VARIANT found{};
    if (value == nullptr) return found;
    if ((value->vt & VT_BYREF) == 0) {
        found = *value;
        return found;
    }
    const auto type = static_cast<VARTYPE>(value->vt & ~VT_BYREF);
    const std::size_t size = SizeOf(type);
    if (value->byref == nullptr || size == 0) return found;
    std::memcpy(&found.llVal, value->byref, size);
    found.vt = type;
    return found;
}

std::optional<std::uint32_t> IntegerIn(const VARIANT& value) noexcept {
    if (value.vt == VT_BOOL) return value.boolVal != VARIANT_FALSE ? 1 : 0;
    if (value.vt != VT_R8 && (!IsInteger(value.vt) || SizeOf(value.vt) > sizeof(std::uint32_t))) return {};
    VARIANT wide{};
    if (FAILED(::VariantChangeType(&wide, const_cast<VARIANT*>(&value), 0, VT_I8))) return {};
    return static_cast<std::uint32_t>(wide.llVal);
}

std::optional<Octets> OctetsIn(const VARIANT* value) {
    const VARIANT found = ValueIn(value);
    const auto type = static_cast<VARTYPE>(found.vt & ~VT_ARRAY);
    SAFEARRAY* const array = found.parray;
    const std::size_t width = type == VT_VARIANT ? sizeof(VARIANT) : SizeOf(type);
    if ((found.vt & VT_ARRAY) == 0 || (type != VT_VARIANT && !IsInteger(type))) return {};
    if (array == nullptr || array->cDims != 1 || array->cbElements != width) return {};
    const std::size_t count = array->rgsabound[0].cElements;
    if (count == 0) return Octets{};
    const ArrayAccess access(array);
    const auto* elements = access.Data<const char>();
    if (elements == nullptr) return {};
    Octets octets{std::string(count, '\0')};
    if (type != VT_VARIANT) {
        TakeIntegers(elements, width, octets.bytes);
    } else if (!TakeElements(access.Data<const VARIANT>(), octets.bytes)) {
        return {};
    }
    return octets;
}

IUnknown* ObjectIn(const VARIANT* value) noexcept {
    const VARIANT found = ValueIn(value);
    return found.vt == VT_DISPATCH || found.vt == VT_UNKNOWN ? found.punkVal : nullptr;
}

BSTR NewBstr(std::string_view ansi) {
    BSTR text = ::SysAllocStringLen(nullptr, static_cast<UINT>(ansi.size()));
    if (text == nullptr || CopyAscii(ansi, text)) return text;
    ::SysFreeString(text);
    return NewBstr(FromAnsi(ansi));
}
BSTR NewBstr(std::u16string_view text) {
    return ::SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}
BSTR NewBstr(OctetsView octets) {
    const std::string_view bytes = octets.bytes;
    BSTR text = ::SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size()));
    for (std::size_t i = 0; text != nullptr && i < bytes.size(); ++i) {
        text[i] = static_cast<unsigned char>(bytes[i]);
    }
    return text;
}

VARIANT NewByteArray(const Octets& octets) {
    VARIANT value{};
    SAFEARRAY* array = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(octets.bytes.size()));
    if (array == nullptr) return value;
    {
        const ArrayAccess access(array);
        if (!octets.bytes.empty()) std::memcpy(access.Data<char>(), octets.bytes.data(), octets.bytes.size());
    }
    value.vt = VT_ARRAY | VT_UI1;
    value.parray = array;
    return value;
}
