// What the channels that send and receive have in common: the walk over received messages, the report files.
#pragma once
#include "foundation/ErrorTexts.h"
#include "frame/AutomationAuto.h"
#include "sms/SmsMessageAuto.h"

#include <utility>

template <class Interface, class Engine>
class SmsChannelAuto : public ProtocolAuto<Interface> {
  public:
    STDMETHODIMP get_AdvancedSettings(BSTR* pVal) noexcept override {
        return this->GiveAdvancedSettings(pVal);
    }
    STDMETHODIMP put_AdvancedSettings(BSTR newVal) noexcept override {
        return this->StoreAdvancedSettings(newVal);
    }

    STDMETHODIMP Clear() noexcept override {
        return this->Method([&] {
            engine_.Clear();
            return result::Success;
        });
    }

    STDMETHODIMP Send(VARIANT* pMessage, BSTR* pVal) noexcept override {
        return this->Method([&] {
            if (pMessage == nullptr || pVal == nullptr) return result::InvalidParameter;
            *pVal = nullptr;
            CSmsMessageX message;
            if (const ResultCode code = Prepare(pMessage, message); code != result::Success) return code;
            std::string references;
            const ResultCode code = engine_.Send(message, references);
            *pVal = NewBstr(references);
            return code;
        });
    }

    STDMETHODIMP GetFirstMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) { return engine_.Received().First(message); });
    }
    STDMETHODIMP GetNextMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) {
            const ResultCode code = engine_.Received().Next(message);
            if (code == result::NoMoreMessages) WalkEnded();
            return code;
        });
    }
    STDMETHODIMP GetMessage(LONG lIndex, VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this, lIndex](CSmsMessageX& message) {
            const auto index = static_cast<std::size_t>(lIndex);
            const bool found = lIndex >= 0 && engine_.Received().ByIndex(index, message) == result::Success;
            return found ? result::Success : result::InvalidReference;
        });
    }

    STDMETHODIMP LoadReports(BSTR bstrFile) noexcept override {
        return this->Method([&] { return engine_.Reports().Load(AnsiOf(bstrFile)); });
    }
    STDMETHODIMP SaveReports(BSTR bstrFile) noexcept override {
        return this->Method([&] { return engine_.Reports().Save(AnsiOf(bstrFile)); });
    }

  protected:
    template <class... Arguments>
    explicit SmsChannelAuto(Arguments&&... arguments) : engine_(std::forward<Arguments>(arguments)...) {}

    CVrmBase& Base() override { return engine_; }

    // Copies the caller's message for sending.
    virtual ResultCode Prepare(VARIANT* from, CSmsMessageX& message) {
        return CopyFromAutomation(from, message);
    }
    // A received message is about to be given to the caller.
    virtual void Giving(const CSmsMessageX& /*message*/) {}
    virtual void WalkEnded() {}

    Engine engine_;

  private:
    template <class Read>
    HRESULT GiveMessage(VARIANT* pVal, Read read) noexcept {
        return this->Method([&] {
            if (pVal == nullptr) return result::InvalidParameter;
            GiveObject(pVal, nullptr);
            CSmsMessageX message;
            const ResultCode code = read(message);
            if (code != result::Success) return code;
            Giving(message);
            GiveSmsMessage(pVal, message);
            return code;
        });
    }
};
