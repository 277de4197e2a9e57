// The module: how many objects and locks are outstanding, where the file lies, and its type library.
#pragma once
#include <atomic>
#include <map>
#include <mutex>
#include <oaidl.h>
#include <string>
#include <windows.h>

class Module {
  public:
    static Module& Get();

    void SetInstance(HINSTANCE instance) { instance_ = instance; }
    HINSTANCE Instance() const { return instance_; }
    std::wstring Path() const;

    void Hold() { ++held_; }
    void Release() { --held_; }
    bool CanUnload() const { return held_ == 0; }

    // Keeps the module loaded until the process ends, whatever CanUnload says.
    void Pin();

    // The type information of an interface of the embedded type library; null when it cannot be loaded.
    ITypeInfo* TypeInfo(const IID& iid);

  private:
    struct LessIid {
        bool operator()(const IID& a, const IID& b) const;
    };

    HINSTANCE instance_ = nullptr;
    std::atomic<long> held_ = 0;
    std::mutex lock_;
    std::map<IID, ITypeInfo*, LessIid> typeInfos_;  // kept until the module is gone
};

// Keeps the module loaded as long as the owner lives.
class ModuleHold {
  public:
    ModuleHold() { Module::Get().Hold(); }
    ModuleHold(const ModuleHold&) = delete;
    ModuleHold& operator=(const ModuleHold&) = delete;
    ~ModuleHold() { Module::Get().Release(); }
};
