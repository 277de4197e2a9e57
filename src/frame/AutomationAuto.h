// What every automatable class has in common: IUnknown and IDispatch, the lines that make properties, the
// common members and the one boundary that methods work behind.
#pragma once
#include "foundation/ErrorTexts.h"
#include "foundation/Product.h"
#include "frame/DispatchNamesAuto.h"
#include "frame/ModuleAuto.h"
#include "frame/ValuesAuto.h"
#include "frame/VrmBase.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <new>
#include <source_location>
#include <type_traits>

// --- property lines; the type of the field chooses the conversion (frame/ValuesAuto.h)

// Read only: any expression.
#define AUTO_READ(type, name, value)                                          \
    STDMETHODIMP get_##name(type* pVal) noexcept override {                   \
        return GiveResult(pVal, [&]() -> decltype(auto) { return (value); }); \
    }
#define AUTO_TEXT_READ(name, value) AUTO_READ(BSTR, name, value)
#define AUTO_OCTETS_READ(name, value) AUTO_READ(BSTR, name, value)
#define AUTO_NUMBER_READ(name, value) AUTO_READ(LONG, name, value)
#define AUTO_FLAG_READ(name, value) AUTO_READ(LONG, name, value)

// Read and written: a field of the object.
#define AUTO_FIELD(type, name, field) \
    AUTO_READ(type, name, field)      \
    STDMETHODIMP put_##name(type newVal) noexcept override { return Store(field, newVal); }
#define AUTO_TEXT(name, field) AUTO_FIELD(BSTR, name, field)
#define AUTO_OCTETS(name, field) AUTO_FIELD(BSTR, name, field)
#define AUTO_NUMBER(name, field) AUTO_FIELD(LONG, name, field)
#define AUTO_FLAG(name, field) AUTO_FIELD(LONG, name, field)

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
                           IsEqualIID(iid, __uuidof(Interface)) || IsOwnIid(iid);
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

    // Whether the IID is the one by which our own objects know this class (frame/OwnObjectAuto.h).
    virtual bool IsOwnIid(REFIID /*iid*/) const { return false; }

  private:
    static ITypeInfo* Info() {
        static ITypeInfo* const info = Module::Get().TypeInfo(__uuidof(Interface));
        return info;
    }

    ModuleHold hold_;
    std::atomic<ULONG> references_ = 1;
};

// --- the argument of a lambda that takes one by reference

template <class Call>
struct ArgumentOfCall;
template <class Lambda, class Outcome, class Argument>
struct ArgumentOfCall<Outcome (Lambda::*)(Argument&) const> {
    using Type = Argument;
};
template <class Lambda>
using ArgumentOf = typename ArgumentOfCall<decltype(&Lambda::operator())>::Type;

// --- the common members; an interface takes those it declares

template <class Interface>
class ObjectAuto : public Automation<Interface> {
  public:
    AUTO_NUMBER_READ(LastError, lastError_.load())
    AUTO_TEXT_READ(Version, product::kVersion)
    AUTO_TEXT_READ(Build, product::kBuild)
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

    // Runs a method that puts something out: the argument of `work`, of any type that Put knows. Without a
    // pointer: 33005. The output is emptied before the work and gets what that leaves in its argument,
    // whatever the code.
    template <class Out, class Work>
    HRESULT Output(Out* pVal, Work&& work,
                   std::source_location where = std::source_location::current()) noexcept {
        return Method(
            [&] {
                if (pVal == nullptr) return result::InvalidParameter;
                ArgumentOf<std::remove_cvref_t<Work>> value{};
                PutNothing(pVal, value);
                const ResultCode code = work(value);
                Put(pVal, value);
                return code;
            },
            where);
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
