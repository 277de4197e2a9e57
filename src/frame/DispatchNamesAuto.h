// The members of an interface by name. A script looks a name up before each call, and type libraries search
// their members one by one.
#pragma once
#include <oaidl.h>
#include <string>
#include <vector>
#include <windows.h>

class DispatchNames {
  public:
    explicit DispatchNames(ITypeInfo* info) noexcept;

    // The dispid of a name in whatever case; DISPID_UNKNOWN when no member has it.
    DISPID Find(const OLECHAR* name) const;

  private:
    void Read(ITypeInfo* info);

    struct Row {
        std::wstring name;  // in lower case
        DISPID id;
    };
    std::vector<Row> rows_;  // sorted by name
};
