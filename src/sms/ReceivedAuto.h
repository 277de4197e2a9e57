// The walk over received messages, for every protocol whose engine keeps some (`Received()`).
#pragma once
#include "frame/AutomationAuto.h"
#include "sms/SmsMessageAuto.h"
#include "sms/SmsMessageX.h"

template <class Protocol>
class ReceivedAuto : public Protocol {
  public:
    using Protocol::Protocol;

    STDMETHODIMP GetFirstMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) { return First(message); });
    }
    STDMETHODIMP GetNextMessage(VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this](CSmsMessageX& message) {
            const ResultCode code = this->engine_.Received().Next(message);
            if (code == result::NoMoreMessages) WalkEnded();
            return code;
        });
    }
    STDMETHODIMP GetMessage(LONG lIndex, VARIANT* pVal) noexcept override {
        return GiveMessage(pVal, [this, lIndex](CSmsMessageX& message) {
            const auto index = static_cast<std::size_t>(lIndex);
            const bool found =
                lIndex >= 0 && this->engine_.Received().ByIndex(index, message) == result::Success;
            return found ? result::Success : result::InvalidReference;
        });
    }

  protected:
    virtual ResultCode First(CSmsMessageX& message) { return this->engine_.Received().First(message); }
    // A received message is about to be given to the caller.
    virtual void Giving(const CSmsMessageX& /*message*/) {}
    virtual void WalkEnded() {}

  private:
    template <class Read>
    HRESULT GiveMessage(VARIANT* pVal, Read read) noexcept {
        return this->Output(pVal, [&](ComPointer<IDispatch>& object) {
            CSmsMessageX message;
            const ResultCode code = read(message);
            if (code != result::Success) return code;
            Giving(message);
            object = NewSmsMessage(message);
            return code;
        });
    }
};
