// A GSM modem as every channel that works through one needs it, 3GPP TS 27.005 and 27.007: opening and the
// opening dialogue, the PIN, raw commands, and what lies in its storages. The channel adds its own dialogue.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/VrmComIO.h"
#include "gsm/GsmStorage.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// What the caller sets.
struct GsmSettings {
    std::string device;       // "COM1", or the name of a telephony line
    std::uint32_t speed = 0;  // bits per second; 0 = 115200
    std::string initString;   // an AT command sent first; empty = none
    std::int32_t flowControl = sms::asDEVICEFLOWCONTROL_DEFAULT;
    std::int32_t messageStorage = sms::asSTORAGE_ALL;  // where messages and reports are read from
    std::int32_t reportsStorage = sms::asSTORAGE_ALL;  // kept for the caller; reading goes by messageStorage
    std::string smsc;                                  // empty = the SIM's own
};

// What channels log in words of their own.
struct GsmDeviceTexts {
    const char* noSim = "Either the device is not a GSM device or the SIM card is not inserted !\n";
};

class CGsmDevice : public CVrmComIO {
  public:
    static constexpr std::uint32_t kCommandTime = 5000;  // ms
    static constexpr std::uint32_t kSubmitTime = 20000;

    explicit CGsmDevice(SerialOpener& opener, Clock& clock = SystemClock(), const GsmDeviceTexts& texts = {})
        : CVrmComIO(opener, clock), texts_(texts) {}

    class Session;  // the device open for one operation

    // Both open the device for themselves; the codes are those of the channels' methods of the same names. A
    // time-out of -1 ms waits for ever, any other below 0 not at all.
    ResultCode EnterPin(const GsmSettings& settings, std::string_view pin);
    ResultCode SendCommand(const GsmSettings& settings, std::string_view command, std::int32_t timeout,
                           std::string& response);

    // All that follows works on the open device.

    // The opening dialogue.
    ResultCode Initialise(const GsmSettings& settings);
    // Notes the storages that the device offers.
    ResultCode AskStorages();
    unsigned OfferedStorages() const { return offeredStorages_; }

    // One command with the usual time-out, and the last line of its reply if wanted.
    ResultCode Command(std::string_view command, std::string_view expected = {},
                       std::string* reply = nullptr);

    // A command that a prompt answers, and the data behind the prompt. What the modem still waits for when it
    // gives no result is called off.
    ResultCode Announce(std::string_view command);
    AtExchange Submit(std::string_view data);

    ResultCode Select(const GsmStorage& storage);
    // Hands on the PDUs of a storage, those read before and then the unread ones, also when one of the two
    // listings fails: the code is that of the first failure, 33150 when the device lacks the storage.
    ResultCode List(const GsmStorage& storage, const TakeEntry& take);

  private:
    ResultCode OpenFor(const GsmSettings& settings);
    void CloseFor(const GsmSettings& settings);
    ResultCode OpeningDialogue(const GsmSettings& settings);
    ResultCode CalledOff(ResultCode code);
    ResultCode CheckPin(std::string_view pin);
    void WaitForRegistration();

    GsmDeviceTexts texts_;
    std::string rejectedPin_;  // stays known for the life of the object
    unsigned offeredStorages_ = 0;
};

class CGsmDevice::Session {
  public:
    Session(CGsmDevice& device, GsmSettings settings)
        : device_(&device), settings_(std::move(settings)), code_(device.OpenFor(settings_)) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { device_->CloseFor(settings_); }
    ResultCode Code() const { return code_; }  // of the opening

  private:
    CGsmDevice* device_;
    GsmSettings settings_;
    ResultCode code_;
};

// True when a value can stand in double quotes: no quote and no control character would end it or the
// command.
bool IsQuotable(std::string_view value);

// A command with its value in double quotes.
std::string Quoted(std::string_view command, std::string_view value);
