// The class MmsPermission.
#include "mms/MmsPermissionAuto.h"

#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

namespace {

class MmsPermissionAuto final : public Automation<IMmsPermission> {
  public:
    STDMETHODIMP Clear() noexcept override {
        permission_ = {};
        return S_OK;
    }
    AUTO_NUMBER(Operation, permission_.Operation)
    AUTO_NUMBER(Times, permission_.Times)
    AUTO_NUMBER(Days, permission_.Days)
    AUTO_TEXT(BeginDate, permission_.BeginDate)
    AUTO_TEXT(EndDate, permission_.EndDate)

  private:
    CMmsPermission permission_;
};

std::int32_t Read(IMmsPermission* source, HRESULT (STDMETHODCALLTYPE IMmsPermission::*getter)(LONG*)) {
    LONG value = 0;
    (source->*getter)(&value);
    return value;
}

std::string Read(IMmsPermission* source, HRESULT (STDMETHODCALLTYPE IMmsPermission::*getter)(BSTR*)) {
    BstrOwner text;
    (source->*getter)(text.Receive());
    return AnsiOf(text.Get());
}

}  // namespace

IUnknown* CreateMmsPermission() { return new MmsPermissionAuto; }

ResultCode CopyFromAutomation(const VARIANT* value, std::optional<CMmsPermission>& permission) {
    permission.reset();
    IUnknown* const object = ObjectIn(value);
    if (object == nullptr) return result::Success;
    const auto source = InterfaceOf<IMmsPermission>(object);
    if (!source) return result::InvalidParameter;
    permission = {
        Read(source.Get(), &IMmsPermission::get_Operation), Read(source.Get(), &IMmsPermission::get_Times),
        Read(source.Get(), &IMmsPermission::get_Days), Read(source.Get(), &IMmsPermission::get_BeginDate),
        Read(source.Get(), &IMmsPermission::get_EndDate)};
    return result::Success;
}
