// A Windows communications port, by name or as the handle of a telephony call.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/HandleWin.h"
#include "foundation/serial/SerialDevice.h"

#include <windows.h>

// Overlapped I/O on an open port handle. No call leaves I/O pending.
class PortWin : public SerialDevice {
  public:
    explicit PortWin(Handle port);
    PortWin(const PortWin&) = delete;
    PortWin& operator=(const PortWin&) = delete;
    ~PortWin() override = default;

    // Buffers, line settings, purge and immediate-return time-outs; 0, 30105, 30109 or 30110.
    ResultCode Prepare(const SerialSettings& settings);

    bool Write(std::span<const char> octets, std::uint32_t limit) override;
    int Read(std::span<char> buffer, std::uint32_t wait) override;
    void Purge() override;
    void SetDtr(bool on) override;
    void SetRts(bool on) override;

  protected:
    void Close() { port_ = Handle(); }

  private:
    // Waits for the operation; cancels and collects it when the time is over. The octets moved, or -1.
    int Finish(OVERLAPPED& operation, BOOL started, DWORD wait);

    Handle port_;
    Handle readEvent_;
    Handle writeEvent_;
};

// Puts the settings into the state of a line; `defaults` is the port's own default configuration.
void ApplyLineSettings(const SerialSettings& settings, const DCB& defaults, DCB& state);

// The opener of this machine's ports and telephony lines.
SerialOpener& MachineSerialOpener();
