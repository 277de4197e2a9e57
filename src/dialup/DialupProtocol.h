// The dial-up channel: one message through an ordinary modem to a provider that speaks UCP or TAP, one call
// a message.
#pragma once
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "foundation/serial/VrmComIO.h"
#include "frame/VrmBase.h"
#include "sms/SmsConstants.h"
#include "sms/SmsMessageX.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct DialupSettings {
    std::string device;            // "COM1", or the name of a telephony line
    std::int32_t deviceSpeed = 0;  // bits per second; 0 = 115200
    std::string deviceInitString;  // AT commands, separated by ";"; empty = none
    std::int32_t flowControl = sms::asDEVICEFLOWCONTROL_DEFAULT;
    std::int32_t providerType = sms::asPROVIDERTYPE_UCP;
    std::string dialString;
    std::int32_t dialMode = sms::asDIALMODE_TONE;  // any other than tone is pulse
    std::string providerInitString;                // as that of the device, which goes first
    std::string providerPassword;                  // empty = none
    std::int32_t providerSpeed = 0;                // 0 = that of the device
    std::int32_t providerSettings = sms::asDEVICESETTINGS_DEFAULT;
};

// The command that dials: pulse dialling unless the number says how.
std::string DialCommand(std::int32_t dialMode, std::string_view dialString);

class CDialupProtocol : public CVrmBase {
  public:
    explicit CDialupProtocol(SerialOpener& opener, Clock& clock = SystemClock());

    DialupSettings settings;
    void SetDialString(const std::string& dialString);

    void SetLogFile(const std::string& name) override;
    void SetActivityFile(const std::string& name) override;
    void HidePasswords(std::vector<std::string> passwords) override;

    // Back to the state after construction.
    void Clear();

    // 0; before dialling 34031 for a recipient and 34010 for a dial string that cannot be dialled, 34033 for
    // a text of more than 160 characters or a frame that is too long; those of CVrmComIO::Open; 30351 when
    // the modem refuses a command or there is no connection; then those of HearUcpReply, IdentifyTap and
    // HearTapReply.
    ResultCode Send(const CSmsMessageX& message);

    // The text of the provider's last reply.
    const std::string& ProviderResponse() const { return providerResponse_; }

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);

  private:
    struct Frames;

    std::vector<ProviderRow> ProviderRows();
    bool IsTap() const;
    ResultCode Build(const CSmsMessageX& message, Frames& frames) const;
    ResultCode Open();
    ResultCode Dial();
    ResultCode Submit(const Frames& frames);
    void HangUp();

    CVrmComIO port_;
    std::string providerResponse_;
};
