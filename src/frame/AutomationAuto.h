// What every automatable class has in common: IUnknown and IDispatch, the access to plain values, the common
// members and the one boundary that methods work behind.
#pragma once
#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "frame/DispatchNamesAuto.h"
#include "frame/ModuleAuto.h"
#include "frame/VrmBase.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <new>
#include <oaidl.h>
#include <source_location>
#include <string>
#include <string_view>
#include <type_traits>
#include <windows.h>

// --- values across the interface; a null output pointer leaves everything as it is

std::string AnsiOf(BSTR text);
std::u16string WideOf(BSTR text);
BSTR NewBstr(std::string_view ansi);
BSTR NewBstr(std::u16string_view text);

// Writes a value to an output pointer, which may be null. Always S_OK.
HRESULT Give(BSTR* out, std::string_view ansi) noexcept;
HRESULT Give(BSTR* out, std::u16string_view text) noexcept;

template <class Number>
requires std::is_integral_v<Number> HRESULT Give(LONG* out, Number value)
noexcept {
    if (out != nullptr) *out = static_cast<LONG>(value);
    return S_OK;
}

// Stores a value as it is. Always S_OK.
HRESULT Store(std::string& field, BSTR text) noexcept;
HRESULT Store(std::u16string& field, BSTR text) noexcept;

template <class Number>
requires std::is_integral_v<Number> HRESULT Store(Number& field, LONG value)
noexcept {
    field = static_cast<Number>(value);
    return S_OK;
}

// The object in a VARIANT, through every form of indirection; null when there is none. The caller releases
// it.
IUnknown* ObjectOf(const VARIANT* value, const IID& iid) noexcept;

template <class Interface>
class ComPointer {
  public:
    explicit ComPointer(Interface* owned = nullptr) : pointer_(owned) {}
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;
    ~ComPointer() {
        if (pointer_ != nullptr) pointer_->Release();
    }
    static ComPointer In(const VARIANT* value) {
        return ComPointer(static_cast<Interface*>(static_cast<void*>(ObjectOf(value, __uuidof(Interface)))));
    }
    Interface* operator->() const { return pointer_; }
    Interface* get() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

  private:
    Interface* pointer_;
};

// Puts an object into an output VARIANT, which takes over the reference; null gives "Nothing".
HRESULT GiveObject(VARIANT* out, IDispatch* object) noexcept;

// One property, read and written, of a field of the object.
#define AUTO_TEXT(name, field)                                                          \
    STDMETHODIMP get_##name(BSTR* pVal) noexcept override { return Give(pVal, field); } \
    STDMETHODIMP put_##name(BSTR newVal) noexcept override { return Store(field, newVal); }
#define AUTO_NUMBER(name, field)                                                        \
    STDMETHODIMP get_##name(LONG* pVal) noexcept override { return Give(pVal, field); } \
    STDMETHODIMP put_##name(LONG newVal) noexcept override { return Store(field, newVal); }

// --- IUnknown and IDispatch

template <class Interface>
class Automation : public Interface {
  public:
    Automation() = default;
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                           IsEqualIID(iid, __uuidof(Interface));
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        ITypeInfo* found = Info();
        if (found == nullptr) return TYPE_E_CANTLOADLIBRARY;
        found->AddRef();
        *info = found;
        return S_OK;
    }
    STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                               DISPID* ids) override {
        ITypeInfo* info = Info();
        if (info == nullptr) return TYPE_E_CANTLOADLIBRARY;
        if (count == 1 && names != nullptr && ids != nullptr && names[0] != nullptr) {
            static const DispatchNames members(info);
            *ids = members.Find(names[0]);
            if (*ids != DISPID_UNKNOWN) return S_OK;
        }
        return info->GetIDsOfNames(names, count, ids);
    }
    STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                        VARIANT* outcome, EXCEPINFO* exception, UINT* badArgument) override {
        ITypeInfo* info = Info();
        if (info == nullptr) return TYPE_E_CANTLOADLIBRARY;
        return info->Invoke(static_cast<Interface*>(this), id, flags, parameters, outcome, exception,
                            badArgument);
    }

  protected:
    virtual ~Automation() = default;

  private:
    static ITypeInfo* Info() {
        static ITypeInfo* const info = Module::Get().TypeInfo(__uuidof(Interface));
        return info;
    }

    ModuleHold hold_;
    std::atomic<ULONG> references_ = 1;
};

// --- the common members; an interface takes those it declares

template <class Interface>
class ObjectAuto : public Automation<Interface> {
  public:
    STDMETHODIMP get_LastError(LONG* pVal) noexcept override { return Give(pVal, lastError_.load()); }
    STDMETHODIMP get_Version(BSTR* pVal) noexcept override { return Give(pVal, product::kVersion); }
    STDMETHODIMP get_Build(BSTR* pVal) noexcept override { return Give(pVal, product::kBuild); }
    virtual STDMETHODIMP get_Module(BSTR* pVal) noexcept { return Give(pVal, product::kModule); }
    STDMETHODIMP GetErrorDescription(LONG lCode, BSTR* pVal) noexcept override {
        return Give(pVal, DescribeError(lCode));
    }

  protected:
    virtual CVrmBase& Base() = 0;

    void SetLastError(ResultCode code) noexcept { lastError_ = code.Number(); }

    // Runs a method: its code, also that of an exception, becomes LastError as the last step. Always S_OK.
    template <class Work>
    HRESULT Method(Work&& work, std::source_location where = std::source_location::current()) noexcept {
        lastError_ = Guard(work, where).Number();
        return S_OK;
    }

  private:
    template <class Work>
    ResultCode Guard(Work& work, const std::source_location& where) noexcept {
        try {
            return work();
        } catch (const std::bad_alloc&) {
            LogException("out of memory", where);
            return result::OutOfMemory;
        } catch (const std::exception& error) {
            LogException(error.what(), where);
        } catch (...) {
            LogException("unknown", where);
        }
        return result::InternalError;
    }

    void LogException(const char* what, const std::source_location& where) noexcept {
        try {
            Base().Log(logmask::kLog, "EXCEPTION [%s], source=[%s], line=[%u]", what,
                       Base().ClassName().c_str(), static_cast<unsigned>(where.line()));
        } catch (...) {  // nothing more can be done
        }
    }

    std::atomic<std::int32_t> lastError_ = 0;  // a worker thread may set it too
};

// A class with log and activity files, which its engine writes.
template <class Interface>
class ProtocolAuto : public ObjectAuto<Interface> {
  public:
    STDMETHODIMP get_LogFile(BSTR* pVal) noexcept override { return Give(pVal, this->Base().LogFile()); }
    STDMETHODIMP put_LogFile(BSTR newVal) noexcept override {
        return Set(newVal, [this](const std::string& name) { this->Base().SetLogFile(name); });
    }
    virtual STDMETHODIMP get_ActivityFile(BSTR* pVal) noexcept {
        return Give(pVal, this->Base().ActivityFile());
    }
    virtual STDMETHODIMP put_ActivityFile(BSTR newVal) noexcept {
        return Set(newVal, [this](const std::string& name) { this->Base().SetActivityFile(name); });
    }

  protected:
    // The class's own AdvancedSettings property.
    HRESULT GiveAdvancedSettings(BSTR* pVal) noexcept { return Give(pVal, this->Base().AdvancedSettings()); }
    HRESULT StoreAdvancedSettings(BSTR newVal) noexcept {
        return Set(newVal, [this](const std::string& text) { this->Base().SetAdvancedSettings(text); });
    }

    template <class Setter>
    HRESULT Set(BSTR text, Setter setter) noexcept {
        try {
            setter(AnsiOf(text));
        } catch (...) {  // a setter has no result code; what cannot be stored is not stored
        }
        return S_OK;
    }
};
