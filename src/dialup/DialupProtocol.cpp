#include "dialup/DialupProtocol.h"

#include "Common/UcpTap/SMSCMessage.h"
#include "dialup/TapDialogue.h"
#include "dialup/UcpDialogue.h"
#include "foundation/Addresses.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/serial/HearUntil.h"
#include "sms/DeviceOptions.h"

namespace {

constexpr std::size_t kLongestText = 160;  // characters of UCP, octets of TAP
constexpr std::uint32_t kCommandTime = 5000;
constexpr std::uint32_t kDialTime = 90'000;
constexpr std::uint32_t kAroundFrame = 500;

// Without the silence that most modems want around "+++": kept as it always was.
constexpr std::string_view kHangUp = "+++ATH0\r";
constexpr HearUntil kHungUp{.line = "WAIT FOR response", .read = 3000, .text = "OK"};
constexpr HearUntil kTapHungUp{.line = kHungUp.line,
                               .read = kHungUp.read,
                               .accept =
                                   [](std::string_view heard) {
                                       const bool ended =
                                           heard.find(kHungUp.text) != std::string_view::npos ||
                                           heard.find("NO CARRIER") != std::string_view::npos;
                                       return ended ? Heard::kWhole : Heard::kNotYet;
                                   },
                               .sevenBits = true};

}  // namespace

struct CDialupProtocol::Frames {
    CSMSCMessage logon;  // of TAP only
    CSMSCMessage message;
};

std::string DialCommand(std::int32_t dialMode, std::string_view dialString) {
    const bool saysHow = dialString.starts_with('T') || (dialString.size() > 1 && dialString[1] == 'P');
    const bool pulse = dialMode != sms::asDIALMODE_TONE && !saysHow;
    return std::string(pulse ? "ATDP" : "ATD").append(dialString);
}

CDialupProtocol::CDialupProtocol(SerialOpener& opener, Clock& clock)
    : CVrmBase("CSmsProtocolDialup", clock), port_(opener, clock) {}

void CDialupProtocol::SetLogFile(const std::string& name) {
    CVrmBase::SetLogFile(name);
    port_.SetLogFile(name);
}

void CDialupProtocol::SetActivityFile(const std::string& name) {
    CVrmBase::SetActivityFile(name);
    port_.SetActivityFile(name);
}

void CDialupProtocol::HidePasswords(std::vector<std::string> passwords) {
    port_.HidePasswords(passwords);
    CVrmBase::HidePasswords(std::move(passwords));
}

void CDialupProtocol::SetDialString(const std::string& dialString) {
    settings.dialString = dialString;
    GuardPasswords({settings.providerPassword});
    Log(logmask::kVerbatim, "Provider Dial String : %s \n", dialString.c_str());
}

void CDialupProtocol::Clear() {
    settings = {};
    providerResponse_.clear();
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
}

// --- one message

bool CDialupProtocol::IsTap() const {
    return settings.providerType >= sms::asPROVIDERTYPE_TAP_DEFAULT &&
           settings.providerType <= sms::asPROVIDERTYPE_TAP_NOEOT;
}

ResultCode CDialupProtocol::Send(const CSmsMessageX& message) {
    providerResponse_.clear();
    GuardPasswords({settings.providerPassword});
    if (!address::IsDialNumber(message.Recipient)) return result::InvalidRecipient;
    Frames frames;
    ResultCode code = Build(message, frames);
    if (code != result::Success) return code;
    if (!address::IsDialNumber(settings.dialString)) return result::InvalidDialString;
    code = Open();
    if (code == result::Success) code = Dial();
    if (code == result::Success) code = Submit(frames);
    port_.Close();
    return code;
}

ResultCode CDialupProtocol::Build(const CSmsMessageX& message, Frames& frames) const {
    if (!IsTap()) {
        if (message.Data.size() > kLongestText) return result::MessageTooLong;
        return frames.message.BuildUcp(message.Recipient, message.Sender, settings.providerPassword,
                                       message.Data);
    }
    const std::string text = ToAnsi(message.Data);
    if (text.size() > kLongestText) return result::MessageTooLong;
    const ResultCode code = frames.logon.BuildTapLogon(settings.providerPassword);
    return code == result::Success ? frames.message.BuildTap(message.Recipient, text) : code;
}

ResultCode CDialupProtocol::Open() {
    SerialSettings serial;
    serial.device = settings.device;
    serial.speed = static_cast<std::uint32_t>(settings.providerSpeed != 0 ? settings.providerSpeed
                                                                          : settings.deviceSpeed);
    ApplyFlowControl(serial, settings.flowControl);
    ApplyDeviceSettings(serial, settings.providerSettings);
    return port_.Open(serial);
}

// Initialises the modem and calls the provider.
ResultCode CDialupProtocol::Dial() {
    for (const std::string* commands : {&settings.deviceInitString, &settings.providerInitString}) {
        if (port_.RunCommandList(*commands) != result::Success) return result::ModemUnexpectedResponse;
    }
    (void)port_.Exchange("ATE0", kCommandTime);
    const AtExchange dialled = port_.Exchange(DialCommand(settings.dialMode, settings.dialString), kDialTime);
    return dialled.outcome.status == AtStatus::kConnect ? result::Success : result::ModemUnexpectedResponse;
}

ResultCode CDialupProtocol::Submit(const Frames& frames) {
    port_.Purge();
    if (IsTap()) {
        const ResultCode code = IdentifyTap(port_, frames.logon.Frame());
        if (code != result::Success) return code;
    }
    const std::string_view frame = frames.message.Frame();
    GetClock().Sleep(kAroundFrame);
    (void)port_.WriteBytes(frame);
    GetClock().Sleep(kAroundFrame);
    const ResultCode code = IsTap() ? HearTapReply(port_, frame, providerResponse_)
                                    : HearUcpReply(port_, frame, providerResponse_);
    if (IsTap() && settings.providerType != sms::asPROVIDERTYPE_TAP_NOEOT) EndTapTransmission(port_);
    HangUp();
    return code;
}

void CDialupProtocol::HangUp() {
    port_.Log(logmask::kVerbatim, "WRITE Hangup-command");
    (void)port_.WriteBytes(kHangUp);
    if (Hear(port_, IsTap() ? kTapHungUp : kHungUp).outcome == Heard::kWhole) {
        port_.Log(logmask::kVerbatim, "READ BYTES, string=[OK]");
    }
}

// --- provider files

std::vector<ProviderRow> CDialupProtocol::ProviderRows() {
    constexpr const char* kProvider = "Provider";
    DialupSettings& s = settings;
    const ProviderRow::Access dialString{[&s] { return s.dialString; },
                                         [this](const std::string& text) { SetDialString(text); }};
    return {
        {kProvider, "ProviderDialMode", &s.dialMode},
        {kProvider, "ProviderDialString", dialString},
        {kProvider, "ProviderInitString", &s.providerInitString},
        {kProvider, "ProviderPassword", &s.providerPassword},
        {kProvider, "ProviderSettingsID", &s.providerSettings},
        {kProvider, "ProviderSpeed", &s.providerSpeed},
        {kProvider, "ProviderTypeID", &s.providerType},
    };
}

ResultCode CDialupProtocol::LoadConfig(const std::string& file) {
    return LoadProviderFile(file, ProviderRows());
}

ResultCode CDialupProtocol::SaveConfig(const std::string& file) {
    const ResultCode code = SaveProviderFile(file, ProviderRows());
    if (code == result::Success) {
        Log(logmask::kVerbatim, "Saving SMSC provider settings to file [%s], result: SUCCESS\n",
            file.c_str());
    } else {
        Log(logmask::kVerbatim, "Saving SMSC provider settings to file [%s], result: ERROR #%d (%s)\n",
            file.c_str(), code.Number(), std::string(DescribeError(code)).c_str());
    }
    return code;
}
