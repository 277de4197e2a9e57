// The modem lines that a protocol over a serial line can use.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/TelephonyWin.h"
#include "frame/ValuesAuto.h"

#include <optional>
#include <string>
#include <vector>

template <class Protocol>
class DevicesAuto : public Protocol {
  public:
    using Protocol::Protocol;

    STDMETHODIMP GetDeviceCount(LONG* pVal) noexcept override {
        return this->Output(pVal, [](std::size_t& count) {
            count = TelephonyLines().size();
            return result::Success;
        });
    }
    STDMETHODIMP GetDevice(LONG lDevice, BSTR* pVal) noexcept override {
        return this->Output(pVal, [lDevice](std::optional<std::string>& name) {
            const std::vector<std::string> lines = TelephonyLines();
            if (lDevice < 0 || static_cast<std::size_t>(lDevice) >= lines.size()) {
                return result::TelephonyDeviceNotFound;
            }
            name = lines[static_cast<std::size_t>(lDevice)];
            return result::Success;
        });
    }
};
