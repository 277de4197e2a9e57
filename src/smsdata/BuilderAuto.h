// What the content builders have in common: encoding, and the result.
#pragma once
#include "NeltCtrl.h"
#include "frame/EngineAuto.h"

template <class Interface, class Content>
class BuilderAuto : public EngineAuto<Interface, Content> {
  public:
    STDMETHODIMP Encode() noexcept override {
        return this->Method([this] {
            engine_.Encode();
            return result::Success;
        });
    }
    AUTO_TEXT_READ(EncodedMessage, engine_.EncodedMessage)

  protected:
    using EngineAuto<Interface, Content>::engine_;
};
