// A class over an engine of the core, which does the work and is also what logs.
#pragma once
#include "frame/AutomationAuto.h"

#include <utility>

template <class Interface, class Engine>
class EngineAuto : public ObjectAuto<Interface> {
  public:
    STDMETHODIMP Clear() noexcept override {
        return this->Method([this] {
            engine_.Clear();
            return result::Success;
        });
    }

  protected:
    template <class... Arguments>
    explicit EngineAuto(Arguments&&... arguments) : engine_(std::forward<Arguments>(arguments)...) {}

    CVrmBase& Base() override { return engine_; }

    Engine engine_;
};
