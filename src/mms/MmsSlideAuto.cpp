// The class MmsSlide over its engine.
#include "mms/MmsSlideAuto.h"

#include "NeltCtrl.h"
#include "frame/EngineAuto.h"
#include "frame/OwnObjectAuto.h"
#include "mms/MmsPermissionAuto.h"
#include "mms/MmsSlide.h"

#include <optional>

namespace {

class MmsSlideAuto final : public EngineAuto<IMmsSlide, CMmsSlide> {
  public:
    MmsSlideAuto() = default;
    explicit MmsSlideAuto(const CMmsMessageSlide& slide) : EngineAuto(slide) {}

    const CMmsMessageSlide& Slide() const { return engine_.Slide(); }

    AUTO_NUMBER_READ(ID, engine_.Id())
    AUTO_NUMBER_READ(Duration, engine_.Duration())
    STDMETHODIMP put_Duration(LONG newVal) noexcept override {
        return Storing([&] { engine_.SetDuration(newVal); });
    }
    // Messages reach a slide by OwnObject: a number of 32 bits cannot hold where it is.
    AUTO_NUMBER_READ(sysClone, 0)

    STDMETHODIMP AddText(BSTR bstrText) noexcept override {
        return Method([&] {
            engine_.AddText(WideOf(bstrText));
            return result::Success;
        });
    }
    STDMETHODIMP AddAttachment(BSTR newVal, VARIANT* pVal) noexcept override {
        return Method([&] {
            const std::string file = AnsiOf(newVal);
            if (file.empty()) return result::Success;
            std::optional<CMmsPermission> permission;
            const ResultCode code = CopyFromAutomation(pVal, permission);
            if (code != result::Success) return code;
            if (permission) engine_.Protect(*std::move(permission));
            return engine_.AddAttachment(file);
        });
    }
    STDMETHODIMP AddAttachmentData(BSTR FileName, VARIANT* Data) noexcept override {
        return Method([&] {
            engine_.AddAttachmentData(AnsiOf(FileName), OctetsIn(Data).value_or(Octets{}).bytes);
            return result::Success;
        });
    }
    STDMETHODIMP CountAttachments(LONG* pVal) noexcept override {
        return Output(pVal, [this](std::size_t& count) {
            count = engine_.AttachmentCount();
            return result::Success;
        });
    }
    STDMETHODIMP GetAttachmentName(LONG lIndex, BSTR* pVal) noexcept override {
        return Output(pVal, [&](std::string& name) {
            const CMmsMessagePart* const part = engine_.Attachment(lIndex);
            if (part == nullptr) return result::NoMoreContent;
            name = part->contentLocation;
            return result::Success;
        });
    }
    // An attachment that there is not leaves LastError as it is.
    STDMETHODIMP SaveAttachment(LONG lIndex, BSTR bstrFileName) noexcept override {
        const CMmsMessagePart* const part = engine_.Attachment(lIndex);
        if (part == nullptr) return S_OK;
        return Method([&] { return CMmsSlide::Save(*part, AnsiOf(bstrFileName)); });
    }
    STDMETHODIMP GetTextCount(LONG* pVal) noexcept override {
        return Output(pVal, [this](std::size_t& count) {
            count = engine_.TextCount();
            return result::Success;
        });
    }
    STDMETHODIMP GetText(LONG lIndex, BSTR* pVal) noexcept override {
        return Output(pVal, [&](OctetsView& text) {
            const CMmsMessagePart* const part = engine_.Text(lIndex);
            if (part == nullptr) return result::NoMoreContent;
            text.bytes = part->data;
            return result::Success;
        });
    }

  private:
    bool IsOwnIid(REFIID iid) const override { return IsEqualIID(iid, OwnIid<MmsSlideAuto>()); }
};

}  // namespace

IUnknown* CreateMmsSlide() { return new MmsSlideAuto; }

ResultCode WithMmsSlide(const VARIANT* value, const std::function<void(const CMmsMessageSlide&)>& use) {
    const auto slide = OwnObject<MmsSlideAuto>(ObjectIn(value));
    if (!slide) return result::InvalidMessageObject;
    use(slide->Slide());
    return result::Success;
}

ComPointer<IDispatch> NewMmsSlide(const CMmsMessageSlide& slide) {
    return ComPointer<IDispatch>(new MmsSlideAuto(slide));
}
