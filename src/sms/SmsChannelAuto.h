// What the channels that send and receive have in common: sending, the walk over received messages, the
// reports.
#pragma once
#include "frame/ProtocolAuto.h"
#include "mms/MmsNotificationReader.h"
#include "sms/ReceivedAuto.h"
#include "sms/SmsDeliveryStatusAuto.h"
#include "sms/SmsMessageAuto.h"

#include <optional>
#include <utility>

template <class Interface, class Engine>
class SmsChannelAuto : public ReceivedAuto<ProtocolAuto<Interface, Engine>> {
  public:
    STDMETHODIMP Send(VARIANT* pMessage, BSTR* pVal) noexcept override {
        return this->Output(pVal, [&](std::optional<std::string>& references) {
            if (pMessage == nullptr) return result::InvalidParameter;
            CSmsMessageX message(std::move(sent_));
            ResultCode code = Prepare(pMessage, message);
            if (code == result::Success) code = engine_.Send(message, references.emplace());
            sent_ = std::move(message);
            return code;
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
    explicit SmsChannelAuto(Arguments&&... arguments)
        : ReceivedAuto<ProtocolAuto<Interface, Engine>>(std::forward<Arguments>(arguments)...) {
        engine_.Received().SetNotificationDecoder(MmsNotifications());
    }
    using ReceivedAuto<ProtocolAuto<Interface, Engine>>::engine_;

    // Copies the caller's message for sending.
    virtual ResultCode Prepare(VARIANT* from, CSmsMessageX& message) {
        return CopyFromAutomation(from, message);
    }
    // How this channel writes the time at which a status became final.
    virtual std::string CompletedTimeText(std::int32_t seconds) {
        return std::string(TimeText(engine_.GetClock(), seconds));
    }

    // Gives the report that `query` finds; one that was waited for in vain is given as it is.
    template <class Query>
    HRESULT GiveStatus(VARIANT* pVal, Query query) noexcept {
        return this->Output(pVal, [&](ComPointer<IDispatch>& status) {
            CSmsDeliveryReport report;
            const ResultCode code = query(report);
            if (code == result::Success || code == result::SmppTimedOut) {
                status = NewDeliveryStatus(report, CompletedTimeText(report.completedTime));
            }
            return code;
        });
    }

  private:
    CSmsMessageX sent_;  // the last, kept for its memory; a Send within a Send finds it empty
};
