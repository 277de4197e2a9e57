#include "gsm/GsmModem.h"

#include "foundation/Addresses.h"
#include "foundation/CodePage.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/Text.h"
#include "gsm/GsmStatusPdu.h"
#include "gsm/PDUDecode.h"
#include "sms/DeviceOptions.h"
#include "sms/MessageFormats.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr std::uint32_t kCommandTime = 5000;
constexpr std::uint32_t kSubmitTime = 20000;
constexpr std::uint32_t kPartPause = 1000;
constexpr std::uint32_t kRetryPause = 2000;
constexpr int kSubmitAttempts = 3;
constexpr std::uint32_t kPinPause = 1000;
constexpr std::uint32_t kRegistrationPause = 2000;
constexpr int kRegistrationAttempts = 10;
constexpr std::int64_t kReportsMaximumAge = 10;  // seconds
constexpr std::size_t kLongestResponse = 65536;
constexpr int kMostListed = 10000;
constexpr unsigned kEvent = logmask::kActivity | logmask::kVerbatim;

struct StorageRow {
    unsigned bit;
    const char* name;
};

// In the order in which deletion goes through them.
constexpr auto kStorages = std::to_array<StorageRow>({{4, "MT"}, {1, "SM"}, {2, "ME"}, {8, "SR"}});

std::string Quoted(std::string_view command, std::string_view value) {
    return std::string(command) + "\"" + std::string(value) + "\"";
}

const char* StorageName(std::int32_t choice, bool reports) {
    switch (choice) {
        case sms::asSTORAGE_SIM:
            return "SIM";
        case sms::asSTORAGE_DEVICE:
            return "DEVICE";
        case sms::asSTORAGE_COMBINED:
            return "COMBINED";
        case sms::asSTORAGE_REPORTS:
            return reports ? "REPORTS" : "AUTO";
        default:
            return "AUTO";
    }
}

bool IsHexText(std::string_view line) {
    return line.size() >= 2 && line.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

std::string AfterColon(std::string_view reply) {
    const std::size_t at = reply.find(':');
    return std::string(at == std::string_view::npos ? reply : reply.substr(at + 1));
}

}  // namespace

class CGsmModem::OpenDevice {
  public:
    explicit OpenDevice(CGsmModem& modem) : modem_(&modem), code_(modem.Open()) {}
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;
    ~OpenDevice() { modem_->Close(); }
    ResultCode Code() const { return code_; }

  private:
    CGsmModem* modem_;
    ResultCode code_;
};

CGsmModem::CGsmModem(SerialOpener& opener, Clock& clock)
    : CVrmBase("CSmsProtocolGsm", clock), port_(opener, clock), received_(clock), reports_(clock) {}

void CGsmModem::SetLogFile(const std::string& name) {
    CVrmBase::SetLogFile(name);
    port_.SetLogFile(name);
}

void CGsmModem::SetActivityFile(const std::string& name) {
    CVrmBase::SetActivityFile(name);
    port_.SetActivityFile(name);
}

void CGsmModem::Clear() {
    settings = {};
    SetAdvancedSettings({});
    SetLogFile({});
    SetActivityFile({});
    received_.Clear();
    reports_.Clear();
    reportsReadAt_.reset();
}

// --- the device and its initialisation

ResultCode CGsmModem::Open() {
    SerialSettings serial;
    serial.device = settings.device;
    serial.speed = settings.speed;
    ApplyFlowControl(serial, settings.flowControl);
    const ResultCode code = port_.Open(serial);
    const std::string text(DescribeError(code));
    if (settings.speed == 0) {
        Log(logmask::kActivity, "Open Device (%s), Result = %s\n", settings.device.c_str(), text.c_str());
    } else {
        Log(logmask::kActivity, "Open Device (%s, %d bps), Result = %s\n", settings.device.c_str(),
            static_cast<int>(settings.speed), text.c_str());
    }
    return code;
}

void CGsmModem::Close() {
    if (!port_.IsOpen()) return;
    port_.Close();
    Log(logmask::kActivity, "Device Closed (%s)\n", settings.device.c_str());
}

ResultCode CGsmModem::Command(std::string_view command, std::string_view expected) {
    return port_.Exchange(command, kCommandTime, expected).outcome.code;
}

ResultCode CGsmModem::Command(std::string_view command, std::string_view expected, std::string& reply) {
    AtExchange exchange = port_.Exchange(command, kCommandTime, expected);
    reply = std::move(exchange.reply);
    return exchange.outcome.code;
}

ResultCode CGsmModem::Initialise() {
    for (const std::string_view command :
         {std::string_view(settings.initString), std::string_view("ATE0"), std::string_view("AT+CMEE=1")}) {
        if (command.empty()) continue;
        if (Command(command) == result::ModemNoResponse) return result::ModemNoResponse;
    }
    if (!settings.smsc.empty() && Command(Quoted("AT+CSCA=", settings.smsc)) == result::ModemError) {
        return result::SmscSetFailed;
    }
    std::string reply;
    if (const ResultCode code = Command("AT+CPMS=?", "+CPMS:", reply); code != result::Success) return code;
    const std::string_view first = std::string_view(reply).substr(0, reply.find("),("));
    offeredStorages_ = 0;
    for (const StorageRow& row : kStorages) {
        if (first.find(row.name) != std::string_view::npos) offeredStorages_ |= row.bit;
    }
    return ChooseMode();
}

ResultCode CGsmModem::ChooseMode() {
    struct Keyword {
        const char* name;
        const char* line;
        bool pduMode;
    };
    static constexpr auto kKeywords = std::to_array<Keyword>({
        {"SkipModeSetting", "FORCING TEXT MODE - SKIPPING AT+CMGF\n", false},
        {"ForceTextMode", "FORCING TEXT MODE\n", false},
        {"ForcePduMode", "FORCING PDU MODE\n", true},
    });
    for (const Keyword& keyword : kKeywords) {
        if (!HasAdvancedSetting(keyword.name)) continue;
        Log(kEvent, "%s", keyword.line);
        pduMode_ = keyword.pduMode;
        return result::Success;
    }
    std::string reply;
    if (const ResultCode code = Command("AT+CMGF=?", "+CMGF:", reply); code != result::Success) return code;
    pduMode_ = AfterColon(reply).find('0') != std::string::npos;
    return result::Success;
}

// --- PIN and raw commands

ResultCode CGsmModem::EnterPin(std::string_view pin) {
    constexpr std::size_t kShortest = 4;
    constexpr std::size_t kLongest = 8;
    if (pin.size() < kShortest || pin.size() > kLongest || !std::ranges::all_of(pin, IsDigit)) {
        Log(kEvent, "No PIN code !\n");
        return result::PinInvalid;
    }
    if (pin == rejectedPin_) {
        Log(kEvent, "PIN code invalid (already tried)\n");
        return result::PinInvalid;
    }
    Log(kEvent, "Checking PIN code...\n");
    const OpenDevice device(*this);
    if (device.Code() != result::Success) {
        Log(kEvent, "Failed to open device !\n");
        return device.Code();
    }
    port_.Purge();
    return CheckPin(pin);
}

ResultCode CGsmModem::CheckPin(std::string_view pin) {
    std::string reply;
    if (const ResultCode code = Command("AT+CPIN?", "+CPIN:", reply); code != result::Success) {
        Log(kEvent, "Either the device is not a GSM device or the SIM card is not inserted !\n");
        return code == result::ModemError ? result::NoSim : code;
    }
    if (!ContainsNoCase(reply, "SIM PIN")) return result::Success;
    GetClock().Sleep(kPinPause);
    const AtOutcome outcome = port_.Exchange(Quoted("AT+CPIN=", pin), kCommandTime).outcome;
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
void CGsmModem::WaitForRegistration() {
    for (int attempt = 0; attempt < kRegistrationAttempts; ++attempt) {
        GetClock().Sleep(kRegistrationPause);
        std::string reply;
        (void)Command("AT+CREG?", "+CREG:", reply);
        if (reply.find(",1") != std::string::npos || reply.find(",5") != std::string::npos) return;
    }
    Log(kEvent, "Successfully registered with the GSM network.\n");
}

ResultCode CGsmModem::SendCommand(std::string_view command, std::uint32_t timeout, std::string& response) {
    response.clear();
    const OpenDevice device(*this);
    if (device.Code() != result::Success) return device.Code();
    port_.WriteString(command);
    std::string last;
    const Timer timer(GetClock(), timeout);
    while (response.size() < kLongestResponse) {
        std::string line;
        if (port_.ReadString(line, CVrmComIO::kLongestLine, timer.Remaining()) != result::Success) break;
        if (!response.empty()) response += "\r\n";
        response += line;
        last = std::move(line);
        const std::string upper = Upper(last);
        if (upper.find("OK") != std::string::npos || upper.find("ERROR") != std::string::npos) break;
        if (timer.Expired()) break;
    }
    const ResultCode code = ClassifyReply(last, {}).code;
    if (IsLogging()) {
        std::string shown(command);
        if (ContainsNoCase(shown, "AT+CPIN")) std::ranges::replace_if(shown, IsDigit, '*');
        LogSized(logmask::kLog, shown.size() + response.size() + 2048,
                 "SEND COMMAND: [%s], Response=[%s], Result=[%d (%s)]\n", shown.c_str(), response.c_str(),
                 code.Number(), DescribeError(code).data());
    }
    return code;
}

// --- sending

ResultCode CGsmModem::Send(const CSmsMessageX& message, std::string& references) {
    references.clear();
    if (const ResultCode code = address::CheckNumber(message.Recipient); code != result::Success) return code;
    const OpenDevice device(*this);
    if (device.Code() != result::Success) return device.Code();
    if (const ResultCode code = Initialise(); code != result::Success) return code;
    Log(logmask::kVerbatim, "RECIPIENT ADDRESS : %s\n", message.Recipient.c_str());
    Log(logmask::kVerbatim, "MESSAGE FORMAT    : %s\n", std::string(FormatOf(message.Format).name).c_str());
    if (message.ValidityPeriod != 0) {
        Log(logmask::kVerbatim, "VALIDITY PERIOD   : %d min\n", message.ValidityPeriod);
    }
    const ResultCode code = pduMode_ ? SendPdus(message, references) : SendText(message, references);
    if (code != result::Success) {
        references.clear();
        return code;
    }
    for (const std::string_view reference : Split(references, {&kReferenceSeparator, 1})) {
        reports_.RecordSent(std::string(reference),
                            message.RequestDeliveryStatus ? ReportWanted::kYes : ReportWanted::kNo);
    }
    return result::Success;
}

ResultCode CGsmModem::SendPdus(const CSmsMessageX& message, std::string& references) {
    if (const ResultCode code = Command("AT+CMGF=0"); code != result::Success) return code;
    if (message.RequestDeliveryStatus) {
        if (const ResultCode code = RequestReports(); code != result::Success) return code;
    }
    GsmSubmit submit;
    submit.smsc = message.SMSC;
    submit.recipient = message.Recipient;
    submit.body = message.Data;
    submit.format = message.Format;
    submit.validityPeriod = message.ValidityPeriod;
    submit.requestReport = message.RequestDeliveryStatus;
    submit.destinationPort = static_cast<std::uint16_t>(message.DestinationPort);
    if (const ResultCode code = codec_.Encode(submit); code != result::Success) return code;

    std::vector<std::string_view> pdus = Split(codec_.Text(), ";");
    pdus.pop_back();  // every PDU is followed by a separator
    for (std::size_t part = 0; part < pdus.size(); ++part) {
        if (part > 0) GetClock().Sleep(kPartPause);
        std::string reference;
        if (const ResultCode code = SendPdu(pdus[part], reference); code != result::Success) return code;
        if (part > 0) references += kReferenceSeparator;
        references += reference;
    }
    return result::Success;
}

// The length counts the octets behind a service centre part of one octet, also when the part is longer: kept
// so.
ResultCode CGsmModem::SendPdu(std::string_view pdu, std::string& reference) {
    const std::string announce = "AT+CMGS=" + std::to_string(pdu.size() / 2 - 1);
    const std::string data = std::string(pdu) + CKorComIO::kCtrlZ;
    for (int attempt = 1;; ++attempt) {
        if (const ResultCode code = Command(announce, ">"); code != result::Success) return code;
        const AtExchange exchange = port_.Exchange(data, kSubmitTime, "+CMGS:");
        if (exchange.outcome.code == result::Success) {
            reference = OnlyDigits(AfterColon(exchange.reply));
            return reference.empty() ? result::ModemUnexpectedResponse : result::Success;
        }
        if (exchange.outcome.code != result::NetworkBusy || attempt == kSubmitAttempts)
            return exchange.outcome.code;
        GetClock().Sleep(kRetryPause);
    }
}

ResultCode CGsmModem::SendText(const CSmsMessageX& message, std::string& references) {
    if (const ResultCode code = Command("AT+CMGF=1"); code != result::Success) return code;
    std::string recipient = message.Recipient;
    std::erase_if(recipient,
                  [](char c) { return std::string_view("ASNG").find(c) != std::string_view::npos; });
    if (const ResultCode code = Command(Quoted("AT+CMGS=", recipient), ">"); code != result::Success)
        return code;
    std::string body = ToAnsi(message.Data).substr(0, CKorComIO::kLongestText - 1) + CKorComIO::kCtrlZ;
    const AtExchange exchange = port_.Exchange(body, kSubmitTime, "+CMGS:");
    if (exchange.outcome.code == result::Success) references = OnlyDigits(exchange.reply);
    return exchange.outcome.code;
}

unsigned ParseCnmiList(std::string_view list) {
    unsigned values = 0;
    const std::size_t dash = list.find('-');
    if (dash != std::string_view::npos) {
        const std::int32_t first = ToInt(OnlyDigits(list.substr(0, dash)));
        const std::int32_t last = ToInt(OnlyDigits(list.substr(dash + 1)));
        for (std::int32_t value = std::max(first, 0); value <= std::min(last, 3); ++value)
            values |= 1U << value;
        return values;
    }
    for (const std::string_view value : Split(list, ",")) {
        const std::string digits = OnlyDigits(value);
        if (digits.size() == 1 && digits[0] <= '3') values |= 1U << (digits[0] - '0');
    }
    return values;
}

ResultCode CGsmModem::RequestReports() {
    std::string reply;
    if (const ResultCode code = Command("AT+CNMI=?", "+CNMI:", reply); code != result::Success) {
        return code == result::ModemNoResponse ? code : result::ReportsUnsupported;
    }
    std::string answer = AfterColon(reply);
    std::erase(answer, ' ');
    const std::vector<std::string_view> lists = Split(answer, "),(");
    constexpr std::size_t kLists = 5;
    constexpr std::size_t kReportsList = 3;
    constexpr unsigned kStoreReports = 2;
    std::string command = "AT+CNMI=";
    for (std::size_t i = 0; i < kLists; ++i) {
        const unsigned offered = i < lists.size() ? ParseCnmiList(lists[i]) : 0;
        unsigned value = 0;
        while (value < 3 && offered != 0 && (offered >> value & 1) == 0) ++value;
        if (i == kReportsList) {
            if ((offered >> kStoreReports & 1) == 0) return result::ReportsUnsupported;
            value = kStoreReports;
        }
        if (i > 0) command += ',';
        command += std::to_string(value);
    }
    return Command(command) == result::Success ? result::Success : result::ReportsUnsupported;
}

// --- receiving

ResultCode CGsmModem::Receive() {
    Log(logmask::kVerbatim, "RETRIEVE MESSAGES FROM STORAGE : [%s]\n",
        StorageName(settings.messageStorage, false));
    received_.Clear();
    return ReadChosenStorages(false);
}

// Messages never lie in the report storage; reports may, when it is chosen or offered.
ResultCode CGsmModem::ReadChosenStorages(bool reports) {
    const OpenDevice device(*this);
    if (device.Code() != result::Success) return device.Code();
    if (const ResultCode code = Initialise(); code != result::Success) return code;
    switch (settings.messageStorage) {
        case sms::asSTORAGE_SIM:
            return ReadStorages(kSim);
        case sms::asSTORAGE_DEVICE:
            return ReadStorages(kDevice);
        case sms::asSTORAGE_COMBINED:
            return ReadStorages(kCombined);
        case sms::asSTORAGE_REPORTS:
            if (reports) return ReadStorages(kReports);
            [[fallthrough]];
        default:
            return ReadStorages(reports ? offeredStorages_
                                        : offeredStorages_ & ~static_cast<unsigned>(kReports));
    }
}

// The report storage alone, else the combined storage alone, else SIM and device.
ResultCode CGsmModem::ReadStorages(unsigned storages) {
    if ((storages & kReports) != 0) return ReadStorage("SR");
    if ((storages & kCombined) != 0) return ReadStorage("MT");
    if ((storages & kSim) != 0) {
        if (const ResultCode code = ReadStorage("SM"); code != result::Success) return code;
    }
    return (storages & kDevice) != 0 ? ReadStorage("ME") : result::Success;
}

ResultCode CGsmModem::SelectStorage(std::string_view storage) { return Command(Quoted("AT+CPMS=", storage)); }

ResultCode CGsmModem::ReadStorage(const char* storage) {
    if (const ResultCode code = Command("AT+CMGF=0"); code != result::Success) return code;
    if (const ResultCode code = SelectStorage(storage); code != result::Success) {
        if (code != result::ModemError) return code;
        Log(kEvent, "Invalid message storage specified");
        return result::StorageUnavailable;
    }
    std::string reportKeys;
    ResultCode code = ListMessages(storage, 1, reportKeys);
    if (code != result::ModemNoResponse) {
        const ResultCode unread = ListMessages(storage, 0, reportKeys);
        if (code == result::Success) code = unread;
    }
    if (reportKeys.empty()) return code;
    Log(kEvent, "Deleting delivery reports...\n");
    const ResultCode deleted = DeleteKeys(reportKeys);
    return code == result::Success ? deleted : code;
}

// Lines that are neither a listing line nor a PDU (unsolicited results, noise) are passed over, for as long
// as one command may take.
ResultCode CGsmModem::ListMessages(const char* storage, int status, std::string& reportKeys) {
    port_.WriteString("AT+CMGL=" + std::to_string(status));
    std::optional<std::int32_t> index;
    Timer quiet(GetClock(), kCommandTime);
    for (int listed = 0; listed < kMostListed && !quiet.Expired();) {
        std::string line;
        if (port_.ReadString(line, CVrmComIO::kLongestLine, kCommandTime) != result::Success) break;
        Log(logmask::kActivity, "Reply: [%s]\n", line.c_str());
        const std::string upper = Upper(line);
        const std::size_t header = upper.find("+CMGL:");
        if (header != std::string::npos) {
            index = ToInt(std::string_view(line).substr(header + 6));
            quiet = Timer(GetClock(), kCommandTime);
            ++listed;
        } else if (index && IsHexText(line)) {
            TakePdu(line, storage, *index, reportKeys);
            index.reset();
        } else if (upper.find("OK") != std::string::npos || upper.find("ERROR") != std::string::npos) {
            return ClassifyReply(line, {}).code;
        }
    }
    return result::ModemNoResponse;
}

void CGsmModem::TakePdu(const std::string& pdu, const char* storage, std::int32_t index,
                        std::string& reportKeys) {
    std::array<char, 24> key{};
    std::snprintf(key.data(), key.size(), "%s%04d;", storage, index);
    CGsmStatusPdu status(pdu);
    if (status.Decode(GetClock())) {
        Log(kEvent, "Report received for message %d, status = %02X\n", status.messageReference,
            status.status);
        reports_.Update(std::to_string(status.messageReference), StatusOfOctet(status.status),
                        status.dischargeSeconds, status.status);
        reportKeys += key.data();
        return;
    }
    Log(kEvent, "Receiving message at memory location [%d]...\n", index);
    CPDUDecode decoded(GetClock());
    if (!decoded.Decode(pdu)) return;
    CSmsMessageX message;
    message.Sender = std::move(decoded.originator);
    message.SMSC = std::move(decoded.serviceCentre);
    message.Data = std::move(decoded.body);
    message.Format = decoded.format;
    message.TimeSecs = decoded.timeSeconds;
    message.ReceivedTime = static_cast<std::int32_t>(GetClock().Now());
    message.Time = std::move(decoded.timeText);
    message.StorageLocation = key.data();
    message.SetSinglePart();
    message.UserDataHeader = std::move(decoded.header);
    message.TakeUserDataHeader();
    received_.Add(std::move(message));
}

// --- deleting

ResultCode CGsmModem::DeleteMessage(std::int32_t index) {
    if (received_.Stored() == 0) return result::NoMoreMessages;
    const OpenDevice device(*this);
    if (device.Code() != result::Success) return device.Code();
    CSmsMessageX message;
    if (index < 0 || received_.ByIndex(static_cast<std::size_t>(index), message) != result::Success) {
        return result::InvalidReference;
    }
    const ResultCode code = DeleteKeys(message.StorageLocation);
    if (code == result::Success) received_.Remove(static_cast<std::size_t>(index));
    return code;
}

// Parts of messages that are still incomplete stay on the device, so that nothing is lost that was never
// read.
ResultCode CGsmModem::DeleteAllMessages(bool all) {
    if (received_.Stored() == 0) return result::NoMoreMessages;
    std::string keys;
    CSmsMessageX message;
    for (std::size_t index = 0; received_.ByIndex(index, message) == result::Success; ++index) {
        if (all || message.Format != sms::asMESSAGEFORMAT_NOTIFICATION_MMS) keys += message.StorageLocation;
    }
    const OpenDevice device(*this);
    if (device.Code() != result::Success) return device.Code();
    const ResultCode code = DeleteKeys(keys);
    if (code == result::Success) received_.Clear();
    return code;
}

ResultCode CGsmModem::DeleteKeys(std::string_view keys) {
    const std::vector<std::string_view> entries = Split(keys, ";");
    ResultCode first = result::Success;
    for (const StorageRow& storage : kStorages) {
        const auto lies = [&](std::string_view key) { return key.starts_with(storage.name); };
        if (std::ranges::none_of(entries, lies)) continue;
        if (const ResultCode code = SelectStorage(storage.name); code != result::Success) return code;
        for (const std::string_view key : entries) {
            if (!lies(key)) continue;
            const ResultCode code = Command("AT+CMGD=" + std::to_string(ToInt(key.substr(2))));
            if (code == result::ModemNoResponse) return code;
            if (first == result::Success) first = code;
        }
    }
    return first;
}

// --- delivery reports

ResultCode CGsmModem::QueryStatus(std::string_view references, CSmsDeliveryReport& report) {
    if (references.empty()) return result::InvalidReference;
    const std::int64_t now = GetClock().Now();
    if (!reportsReadAt_ || now - *reportsReadAt_ > kReportsMaximumAge || now < *reportsReadAt_) {
        Log(logmask::kVerbatim, "RETRIEVE REPORTS FROM STORAGE : [%s]\n",
            StorageName(settings.messageStorage, true));
        if (const ResultCode code = ReadChosenStorages(true); code != result::Success) return code;
        reportsReadAt_ = GetClock().Now();
    }
    const auto whole = reports_.QueryWhole(references, kReferenceSeparator);
    if (!whole) return result::QueryFailed;
    report = *whole;
    if (!IsCompletedStatus(report.status)) return result::Success;
    for (const std::string_view reference : Split(references, {&kReferenceSeparator, 1}))
        reports_.Remove(reference);
    return result::Success;
}
