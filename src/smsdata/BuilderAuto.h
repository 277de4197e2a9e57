// What the content builders have in common: clearing, encoding, and the result.
#pragma once
#include "NeltCtrl.h"
#include "frame/AutomationAuto.h"

template <class Interface, class Content>
class BuilderAuto : public ObjectAuto<Interface> {
  public:
    STDMETHODIMP Clear() noexcept override {
        return this->Method([this] {
            content_.Clear();
            return result::Success;
        });
    }
    STDMETHODIMP Encode() noexcept override {
        return this->Method([this] {
            content_.Encode();
            return result::Success;
        });
    }
    STDMETHODIMP get_EncodedMessage(BSTR* pVal) noexcept override {
        return Give(pVal, content_.EncodedMessage);
    }

  protected:
    CVrmBase& Base() override { return content_; }

    Content content_;
};
