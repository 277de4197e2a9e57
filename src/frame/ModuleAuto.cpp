#include "frame/ModuleAuto.h"

#include "frame/ClassTableAuto.h"
#include "frame/RegistrationAuto.h"

#include <cstring>
#include <memory>
#include <new>

Module& Module::Get() {
    static Module module;
    return module;
}

std::wstring Module::Path() const {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = ::GetModuleFileNameW(instance_, path.data(), static_cast<DWORD>(path.size()));
        if (size < path.size()) {
            path.resize(size);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

// Each load of a module with the compiler's thread run time takes a TLS index that unloading does not give
// back; after about a thousand loads a process has none left.
void Module::Pin() {
    static std::once_flag once;
    std::call_once(once, [this] {
        HMODULE pinned = nullptr;
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(instance_), &pinned);
    });
}

bool Module::LessIid::operator()(const IID& a, const IID& b) const {
    return std::memcmp(&a, &b, sizeof a) < 0;
}

ITypeInfo* Module::TypeInfo(const IID& iid) {
    const std::scoped_lock guard(lock_);
    const auto known = typeInfos_.find(iid);
    if (known != typeInfos_.end()) return known->second;
    ITypeLib* library = nullptr;
    if (FAILED(::LoadTypeLibEx(Path().c_str(), REGKIND_NONE, &library))) return nullptr;
    ITypeInfo* info = nullptr;
    const HRESULT found = library->GetTypeInfoOfGuid(iid, &info);
    library->Release();
    if (FAILED(found)) return nullptr;
    return typeInfos_.emplace(iid, info).first->second;
}

namespace {

class ClassObject final : public IClassFactory {
  public:
    explicit ClassObject(const CreatableClass& row) : row_(&row) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? this : nullptr;
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

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        try {
            IUnknown* created = row_->create();
            const HRESULT outcome = created->QueryInterface(iid, object);
            created->Release();
            return outcome;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return E_FAIL;
        }
    }
    STDMETHODIMP LockServer(BOOL lock) override {
        lock ? Module::Get().Hold() : Module::Get().Release();
        return S_OK;
    }

  private:
    ~ClassObject() = default;

    ModuleHold hold_;
    std::atomic<ULONG> references_ = 0;
    const CreatableClass* row_;
};

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        Module::Get().SetInstance(instance);
        ::DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    Module::Get().Pin();
    for (const CreatableClass& row : CreatableClasses()) {
        if (!IsEqualCLSID(clsid, *row.clsid)) continue;
        auto* classObject = new (std::nothrow) ClassObject(row);
        if (classObject == nullptr) return E_OUTOFMEMORY;
        classObject->AddRef();
        const HRESULT outcome = classObject->QueryInterface(iid, object);
        classObject->Release();
        return outcome;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return Module::Get().CanUnload() ? S_OK : S_FALSE; }
STDAPI DllRegisterServer() { return RegisterServer(); }
STDAPI DllUnregisterServer() { return UnregisterServer(); }
