#include "dialup/PagerMessageAuto.h"

#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"
#include "frame/RecordAuto.h"

namespace {

template <class Visit>
void EachField(Visit visit) {
    visit(&CPagerMessageX::Recipient, &IPagerMessage::get_Recipient);
    visit(&CPagerMessageX::Data, &IPagerMessage::get_Data);
}

class PagerMessageAuto final : public Automation<IPagerMessage> {
  public:
    const CPagerMessageX& Record() const { return record_; }

    STDMETHODIMP Clear() noexcept override {
        record_ = {};
        return S_OK;
    }
    AUTO_TEXT(Recipient, record_.Recipient)
    AUTO_TEXT(Data, record_.Data)

  private:
    bool IsOwnIid(REFIID iid) const override { return IsEqualIID(iid, OwnIid<PagerMessageAuto>()); }

    CPagerMessageX record_;
};

}  // namespace

IUnknown* CreatePagerMessage() { return new PagerMessageAuto; }

ResultCode CopyFromAutomation(const VARIANT* value, CPagerMessageX& record) {
    return record::Read<PagerMessageAuto, IPagerMessage>(
        ObjectIn(value), record, [](auto visit) { EachField(visit); }, result::InvalidPagerMessage);
}
