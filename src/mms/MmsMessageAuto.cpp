// The class MmsMessage over its engine.
#include "mms/MmsMessageAuto.h"

#include "NeltCtrl.h"
#include "frame/EngineAuto.h"
#include "frame/OwnObjectAuto.h"
#include "mms/MmsSlideAuto.h"

#include <optional>
#include <utility>

namespace {

class MmsMessageAuto final : public EngineAuto<IMmsMessage, CMmsMessage> {
  public:
    MmsMessageAuto() = default;
    explicit MmsMessageAuto(MmsMessageFields&& fields) {
        static_cast<MmsMessageFields&>(engine_) = std::move(fields);
    }

    ResultCode SendBy(const std::function<ResultCode(CMmsMessage*)>& send) {
        engine_.EncodeResult.reset();
        const ResultCode code = send(&engine_);
        if (engine_.EncodeResult) SetLastError(*engine_.EncodeResult);
        return code;
    }

    AUTO_TEXT_READ(From, engine_.From)
    STDMETHODIMP put_From(BSTR newVal) noexcept override {
        return Storing([&] { engine_.SetFrom(AnsiOf(newVal)); });
    }
    AUTO_NUMBER(Class, engine_.Class)
    AUTO_NUMBER(Priority, engine_.Priority)
    AUTO_TEXT(Subject, engine_.Subject)
    AUTO_OCTETS_READ(EncodedMessage, OctetsView{engine_.EncodedMessage})
    STDMETHODIMP put_EncodedMessage(BSTR newVal) noexcept override {
        return Storing([&] {
            engine_.SetEncoded(OctetsOf(newVal).bytes);
            SetLastError(result::Success);  // as Clear does
        });
    }
    AUTO_FLAG(RequestReadReceipt, engine_.RequestReadReceipt)
    AUTO_FLAG(RequestDeliveryReport, engine_.RequestDeliveryReport)
    AUTO_NUMBER(Protocol, engine_.Protocol)
    AUTO_TEXT(TransactionId, engine_.TransactionId)
    AUTO_NUMBER(ValidityPeriod, engine_.ValidityPeriod)
    AUTO_TEXT_READ(sysBoundary, engine_.Boundary)
    // Protocol objects reach a message by SendMmsMessage: a number of 32 bits cannot hold where settings are.
    STDMETHODIMP put_sysSettings(LONG /*newVal*/) noexcept override { return S_OK; }

    STDMETHODIMP SaveToFile(BSTR bstrFolder, LONG lFormat) noexcept override {
        return Method([&] { return engine_.SaveToFile(AnsiOf(bstrFolder), lFormat); });
    }
    STDMETHODIMP EncodeMessage() noexcept override {
        return Method([&] { return engine_.Encode(); });
    }
    STDMETHODIMP DecodeMessage() noexcept override {
        return Method([&] { return engine_.Decode(); });
    }
    STDMETHODIMP AddRecipient(BSTR bstrRecipient, LONG lType) noexcept override {
        return Method([&] { return engine_.AddRecipient(AnsiOf(bstrRecipient), lType); });
    }
    STDMETHODIMP AddSlide(VARIANT* pVal) noexcept override {
        return Method([&] {
            return WithMmsSlide(pVal, [this](const CMmsMessageSlide& slide) { engine_.AddSlide(slide); });
        });
    }
    STDMETHODIMP LoadFromFile(BSTR bstrFile) noexcept override {
        return Method([&] { return engine_.LoadFromFile(AnsiOf(bstrFile)); });
    }
    STDMETHODIMP GetFirstSlide(VARIANT* pVal) noexcept override {
        return GiveSlide(pVal, [this] { return engine_.FirstSlide(); });
    }
    STDMETHODIMP GetNextSlide(VARIANT* pVal) noexcept override {
        return GiveSlide(pVal, [this] { return engine_.NextSlide(); });
    }
    STDMETHODIMP GetFirstRecipient(LONG lType, BSTR* pVal) noexcept override {
        return Output(pVal, [&](std::string& address) { return engine_.FirstRecipient(lType, address); });
    }
    STDMETHODIMP GetNextRecipient(LONG lType, BSTR* pVal) noexcept override {
        return Output(pVal, [&](std::string& address) { return engine_.NextRecipient(lType, address); });
    }
    STDMETHODIMP ClearRecipients() noexcept override {
        return Method([&] {
            engine_.ClearRecipients();
            return result::Success;
        });
    }
    STDMETHODIMP LoadCustomSMIL(BSTR bstrFile) noexcept override {
        return Method([&] { return engine_.LoadCustomSmil(AnsiOf(bstrFile)); });
    }

  private:
    bool IsOwnIid(REFIID iid) const override { return IsEqualIID(iid, OwnIid<MmsMessageAuto>()); }

    template <class Find>
    HRESULT GiveSlide(VARIANT* pVal, Find find) noexcept {
        return Output(pVal, [&](std::optional<ComPointer<IDispatch>>& object) {
            const CMmsMessageSlide* const slide = find();
            if (slide == nullptr) return result::NoMoreSlides;
            object.emplace(NewMmsSlide(*slide));
            return result::Success;
        });
    }
};

}  // namespace

IUnknown* CreateMmsMessage() { return new MmsMessageAuto; }

ResultCode SendMmsMessage(const VARIANT* value, const std::function<ResultCode(CMmsMessage*)>& send) {
    const auto message = OwnObject<MmsMessageAuto>(ObjectIn(value));
    return message ? message->SendBy(send) : send(nullptr);
}

ComPointer<IDispatch> NewMmsMessage(MmsMessageFields&& fields) {
    return ComPointer<IDispatch>(new MmsMessageAuto(std::move(fields)));
}
