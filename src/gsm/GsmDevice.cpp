#include "gsm/GsmDevice.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"
#include "gsm/AtValues.h"
#include "sms/DeviceOptions.h"

#include <algorithm>

namespace {

constexpr std::size_t kShortestPin = 4;
constexpr std::size_t kLongestPin = 8;
constexpr std::uint32_t kPinPause = 1000;
constexpr std::uint32_t kEscapeTime = 300;  // ms for the answer to what calls off
constexpr std::uint32_t kRegistrationPause = 2000;
constexpr int kRegistrationAttempts = 10;
constexpr std::size_t kEntrySlack = 2048;  // what an entry of the log holds besides the reply
constexpr unsigned kEvent = logmask::kActivity | logmask::kVerbatim;
constexpr std::string_view kListRead = "AT+CMGL=1";
constexpr std::string_view kListUnread = "AT+CMGL=0";

std::uint32_t TimeoutOf(std::int32_t milliseconds) {
    if (milliseconds == -1) return Timer::kForever;
    return static_cast<std::uint32_t>(std::max(milliseconds, 0));
}

}  // namespace

bool IsQuotable(std::string_view value) {
    return std::ranges::none_of(
        value, [](char c) { return c == '"' || static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
}

std::string Quoted(std::string_view command, std::string_view value) {
    return std::string(command) + "\"" + std::string(value) + "\"";
}

// --- opening

ResultCode CGsmDevice::OpenFor(const GsmSettings& settings) {
    SerialSettings serial;
    serial.device = settings.device;
    serial.speed = settings.speed;
    ApplyFlowControl(serial, settings.flowControl);
    const ResultCode code = Open(serial);
    const std::string text(DescribeError(code));
    if (settings.speed == 0) {
        Log(logmask::kActivity, "Open Device (%s), Result = %s\n", settings.device.c_str(), text.c_str());
    } else {
        Log(logmask::kActivity, "Open Device (%s, %d bps), Result = %s\n", settings.device.c_str(),
            static_cast<int>(settings.speed), text.c_str());
    }
    return code;
}

void CGsmDevice::CloseFor(const GsmSettings& settings) {
    if (!IsOpen()) return;
    Close();
    Log(logmask::kActivity, "Device Closed (%s)\n", settings.device.c_str());
}

ResultCode CGsmDevice::Command(std::string_view command, std::string_view expected, std::string* reply) {
    AtExchange exchange = Exchange(command, kCommandTime, expected);
    if (reply != nullptr) *reply = std::move(exchange.reply);
    return exchange.outcome.code;
}

ResultCode CGsmDevice::Announce(std::string_view command) {
    const AtExchange exchange = Exchange(command, kCommandTime, ">");
    if (exchange.outcome.status == AtStatus::kExpected) return result::Success;
    return CalledOff(exchange.outcome.status == AtStatus::kOk ? result::ModemUnexpectedResponse
                                                              : exchange.outcome.code);
}

AtExchange CGsmDevice::Submit(std::string_view data) {
    AtExchange exchange = Exchange(std::string(data) + kCtrlZ, kSubmitTime, "+CMGS:");
    exchange.outcome.code = CalledOff(exchange.outcome.code);
    return exchange;
}

// A modem that gave no result may wait for data, and would take the next command for them. Its answer, when
// it gives one, is waited for: closing the port drops what has not gone out yet.
ResultCode CGsmDevice::CalledOff(ResultCode code) {
    if (code != result::ModemNoResponse && code != result::ModemUnexpectedResponse) return code;
    (void)WriteBytes({&kEscape, 1});
    std::string answer;
    (void)CKorComIO::ReadString(answer, kLongestLine, kEscapeTime, "\r\n");
    return code;
}

// A prompt that came late in an earlier call may be open.
ResultCode CGsmDevice::Initialise(const GsmSettings& settings) {
    return CalledOff(OpeningDialogue(settings));
}

ResultCode CGsmDevice::OpeningDialogue(const GsmSettings& settings) {
    if (!IsQuotable(settings.smsc)) return result::SmscSetFailed;
    for (const std::string_view command :
         {std::string_view(settings.initString), std::string_view("ATE0"), std::string_view("AT+CMEE=1")}) {
        if (command.empty()) continue;
        if (Command(command) == result::ModemNoResponse) return result::ModemNoResponse;
    }
    if (!settings.smsc.empty() && Command(Quoted("AT+CSCA=", settings.smsc)) == result::ModemError) {
        return result::SmscSetFailed;
    }
    return AskStorages();
}

// --- the PIN and raw commands

ResultCode CGsmDevice::EnterPin(const GsmSettings& settings, std::string_view pin) {
    if (pin.size() < kShortestPin || pin.size() > kLongestPin || !std::ranges::all_of(pin, IsDigit)) {
        Log(kEvent, "No PIN code !\n");
        return result::PinInvalid;
    }
    if (pin == rejectedPin_) {
        Log(kEvent, "PIN code invalid (already tried)\n");
        return result::PinInvalid;
    }
    Log(kEvent, "Checking PIN code...\n");
    const Session session(*this, settings);
    if (session.Code() != result::Success) {
        Log(kEvent, "Failed to open device !\n");
        return session.Code();
    }
    Purge();
    return CheckPin(pin);
}

ResultCode CGsmDevice::CheckPin(std::string_view pin) {
    std::string reply;
    if (const ResultCode code = Command("AT+CPIN?", "+CPIN:", &reply); code != result::Success) {
        Log(kEvent, "%s", texts_.noSim);
        return code == result::ModemError ? result::NoSim : code;
    }
    if (!ContainsNoCase(reply, "SIM PIN")) return result::Success;
    GetClock().Sleep(kPinPause);
    const AtOutcome outcome = Exchange(Quoted("AT+CPIN=", pin), kCommandTime).outcome;
    Log(kEvent, "Sending PIN code\n");
    GetClock().Sleep(kPinPause);
    if (outcome.status == AtStatus::kError) {
        rejectedPin_ = pin;
        Log(kEvent, "Incorrect PIN code !\n");
        return result::PinInvalid;
    }
    if (outcome.code != result::Success) return outcome.code;
    Log(kEvent, "PIN code OK!\n");
    Log(kEvent, "Waiting for GSM network registration...\n");
    WaitForRegistration();
    return result::Success;
}

// The success line stands where registration was not seen: kept as it always was.
void CGsmDevice::WaitForRegistration() {
    for (int attempt = 0; attempt < kRegistrationAttempts; ++attempt) {
        GetClock().Sleep(kRegistrationPause);
        std::string reply;
        (void)Command("AT+CREG?", "+CREG:", &reply);
        if (reply.find(",1") != std::string::npos || reply.find(",5") != std::string::npos) return;
    }
    Log(kEvent, "Successfully registered with the GSM network.\n");
}

ResultCode CGsmDevice::SendCommand(const GsmSettings& settings, std::string_view command,
                                   std::int32_t timeout, std::string& response) {
    response.clear();
    const Session session(*this, settings);
    if (session.Code() != result::Success) return session.Code();
    AtExchange exchange = Collect(command, TimeoutOf(timeout));
    response = std::move(exchange.reply);
    const ResultCode code = exchange.outcome.code;
    if (IsLogging()) {
        const std::string shown = MaskPin(command);
        const std::string answer = MaskPin(response);
        LogSized(logmask::kLog, shown.size() + answer.size() + kEntrySlack,
                 "SEND COMMAND: [%s], Response=[%s], Result=[%d (%s)]\n", shown.c_str(), answer.c_str(),
                 code.Number(), std::string(DescribeError(code)).c_str());
    }
    return code;
}

// --- storages

ResultCode CGsmDevice::AskStorages() {
    std::string reply;
    if (const ResultCode code = Command("AT+CPMS=?", "+CPMS:", &reply); code != result::Success) return code;
    // The first list: where messages are read and deleted. Without brackets the whole answer is one list.
    const std::string_view answer = AnswerOf(reply);
    const std::vector<AtField> lists = AtFields(answer);
    offeredStorages_ = StoragesNamed(!lists.empty() && lists[0].isList ? lists[0].text : answer);
    return result::Success;
}

ResultCode CGsmDevice::Select(const GsmStorage& storage) { return Command(Quoted("AT+CPMS=", storage.name)); }

ResultCode CGsmDevice::List(const GsmStorage& storage, const TakeEntry& take) {
    if (const ResultCode code = Command("AT+CMGF=0"); code != result::Success) return code;
    if (const ResultCode code = Select(storage); code != result::Success) {
        if (code != result::ModemError) return code;
        Log(kEvent, "Invalid message storage specified");
        return result::StorageUnavailable;
    }
    ResultCode first = result::Success;
    for (const std::string_view command : {kListRead, kListUnread}) {
        const ResultCode code = Listing(command, "+CMGL:", kCommandTime, take);
        // Some devices have this for a storage without messages.
        if (code == result::StorageUnavailable) continue;
        if (first == result::Success) first = code;
    }
    return first;
}
