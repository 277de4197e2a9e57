#include "gsm/GsmModem.h"

#include "foundation/Addresses.h"
#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "gsm/AtValues.h"
#include "gsm/GsmInbox.h"
#include "sms/MessageFormats.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace {

constexpr std::uint32_t kPartPause = 1000;
constexpr std::uint32_t kRetryPause = 2000;
constexpr int kSubmitAttempts = 3;
constexpr std::int64_t kReportsMaximumAge = 10;  // seconds
constexpr char kRecipientSeparator = '/';  // in the reference of a report that is for none of the messages
constexpr unsigned kEvent = logmask::kActivity | logmask::kVerbatim;

// What follows it would be commands to the modem.
bool EndsData(char c) { return c == CKorComIO::kCtrlZ || c == CKorComIO::kEscape; }

}  // namespace

CGsmModem::CGsmModem(SerialOpener& opener, Clock& clock)
    : CVrmBase("CSmsProtocolGsm", clock), device_(opener, clock), received_(clock), reports_(clock) {}

void CGsmModem::SetLogFile(const std::string& name) {
    CVrmBase::SetLogFile(name);
    device_.SetLogFile(name);
}

void CGsmModem::SetActivityFile(const std::string& name) {
    CVrmBase::SetActivityFile(name);
    device_.SetActivityFile(name);
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

// --- the opening dialogue

ResultCode CGsmModem::Initialise() {
    const ResultCode code = device_.Initialise(settings);
    return code == result::Success ? ChooseMode() : code;
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
    if (const ResultCode code = device_.Command("AT+CMGF=?", "+CMGF:", &reply); code != result::Success)
        return code;
    pduMode_ = AnswerOf(reply).find('0') != std::string_view::npos;
    return result::Success;
}

// --- sending

ResultCode CGsmModem::Send(const CSmsMessageX& message, std::string& references) {
    references.clear();
    if (const ResultCode code = address::CheckNumber(message.Recipient); code != result::Success) return code;
    if (!CanHold(FormatOf(message.Format), message.Data)) return result::InvalidFormat;
    const CGsmDevice::Session session(device_, settings);
    if (session.Code() != result::Success) return session.Code();
    if (const ResultCode code = Initialise(); code != result::Success) return code;
    Log(logmask::kVerbatim, "RECIPIENT ADDRESS : %s\n", OneLine(message.Recipient).c_str());
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
        if (reference.empty()) continue;
        reports_.RecordSent(reference, message.RequestDeliveryStatus ? ReportWanted::kYes : ReportWanted::kNo,
                            message.Recipient);
    }
    return result::Success;
}

ResultCode CGsmModem::SendPdus(const CSmsMessageX& message, std::string& references) {
    if (const ResultCode code = device_.Command("AT+CMGF=0"); code != result::Success) return code;
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
        if (!references.empty() && !reference.empty()) references += kReferenceSeparator;
        references += reference;
    }
    return result::Success;
}

// The length counts the octets behind a service centre part of one octet, also when the part is longer, and
// all digits of the answer are the reference, also those of an acknowledgement behind it: both kept so.
ResultCode CGsmModem::SendPdu(std::string_view pdu, std::string& reference) {
    const std::string announce = "AT+CMGS=" + std::to_string(pdu.size() / 2 - 1);
    for (int attempt = 1;; ++attempt) {
        if (const ResultCode code = device_.Announce(announce); code != result::Success) return code;
        const AtExchange exchange = device_.Submit(pdu);
        if (exchange.outcome.code == result::Success) {
            reference = OnlyDigits(AnswerOf(exchange.reply));
            return result::Success;
        }
        if (exchange.outcome.code != result::NetworkBusy || attempt == kSubmitAttempts)
            return exchange.outcome.code;
        GetClock().Sleep(kRetryPause);
    }
}

ResultCode CGsmModem::SendText(const CSmsMessageX& message, std::string& references) {
    if (!IsQuotable(message.Recipient)) return result::InvalidRecipient;
    if (const ResultCode code = device_.Command("AT+CMGF=1"); code != result::Success) return code;
    std::string recipient = message.Recipient;
    std::erase_if(recipient,
                  [](char c) { return std::string_view("ASNG").find(c) != std::string_view::npos; });
    if (const ResultCode code = device_.Announce(Quoted("AT+CMGS=", recipient)); code != result::Success)
        return code;
    std::string body = ToAnsi(message.Data).substr(0, CKorComIO::kLongestText - 1);
    std::ranges::replace_if(body, EndsData, ' ');
    const AtExchange exchange = device_.Submit(body);
    if (exchange.outcome.code == result::Success) references = OnlyDigits(exchange.reply);
    return exchange.outcome.code;
}

ResultCode CGsmModem::RequestReports() {
    std::string reply;
    if (const ResultCode code = device_.Command("AT+CNMI=?", "+CNMI:", &reply); code != result::Success) {
        return code == result::ModemNoResponse ? code : result::ReportsUnsupported;
    }
    constexpr std::size_t kLists = 5;  // mode, mt, bm, ds, bfr
    constexpr std::size_t kReportsList = 3;
    constexpr int kStoreReports = 2;
    // A value without brackets is no list, and nothing behind it is taken for one.
    std::vector<AtField> lists = AtFields(AnswerOf(reply));
    lists.erase(std::ranges::find(lists, false, &AtField::isList), lists.end());
    lists.resize(kLists);
    std::string command = "AT+CNMI=";
    for (std::size_t i = 0; i < kLists; ++i) {
        const unsigned offered = ParseCnmiList(lists[i].text);
        if (i == kReportsList && (offered >> kStoreReports & 1) == 0) return result::ReportsUnsupported;
        const int lowest = offered == 0 ? 0 : std::countr_zero(offered);
        if (i > 0) command += ',';
        command += std::to_string(i == kReportsList ? kStoreReports : lowest);
    }
    return device_.Command(command) == result::Success ? result::Success : result::ReportsUnsupported;
}

// --- receiving

ResultCode CGsmModem::Receive() {
    Log(logmask::kVerbatim, "RETRIEVE MESSAGES FROM STORAGE : [%s]\n",
        StorageLogName(settings.messageStorage, StorageUse::kMessages));
    received_.Clear();
    return ReadStorages(StorageUse::kMessages);
}

ResultCode CGsmModem::ReadStorages(StorageUse use) {
    const CGsmDevice::Session session(device_, settings);
    if (session.Code() != result::Success) return session.Code();
    if (const ResultCode code = Initialise(); code != result::Success) return code;
    ResultCode first = result::Success;
    for (const GsmStorage* storage :
         StoragesToRead(settings.messageStorage, use, device_.OfferedStorages())) {
        const ResultCode code = ReadStorage(*storage);
        if (first == result::Success) first = code;
    }
    return first;
}

// Reports lie among the messages. They leave the device once they are known.
ResultCode CGsmModem::ReadStorage(const GsmStorage& storage) {
    std::string reportKeys;
    const ResultCode code =
        ReadInbox(device_, storage,
                  {.isOther =
                       [&](const std::string& pdu, const std::string& key) {
                           if (!TakeReport(pdu)) return received_.HoldsLocation(key);
                           reportKeys += key;
                           return true;
                       },
                   .take = [this](CSmsMessageX message) { received_.Add(std::move(message)); }});
    if (reportKeys.empty()) return code;
    Log(kEvent, "Deleting delivery reports...\n");
    const ResultCode deleted = DeleteKeys(reportKeys);
    return code == result::Success ? deleted : code;
}

bool CGsmModem::TakeReport(const std::string& pdu) {
    CGsmStatusPdu status(pdu);
    if (!status.Decode(GetClock())) return false;
    Log(kEvent, "Report received for message %d, status = %02X\n", status.messageReference, status.status);
    std::string reference = std::to_string(status.messageReference);
    if (AdvancedSetting("CheckReports", 0) != 0 &&
        reports_.IsOfAnother(reference, status.recipient.digits, status.dischargeSeconds)) {
        reference += kRecipientSeparator + status.recipient.digits;
        Log(kEvent, "Report is for another message, kept as [%s]\n", reference.c_str());
    }
    reports_.Update(reference, StatusOfOctet(status.status), status.dischargeSeconds, status.status);
    return true;
}

// --- deleting

ResultCode CGsmModem::DeleteMessage(std::int32_t index) {
    if (received_.Stored() == 0) return result::NoMoreMessages;
    const CGsmDevice::Session session(device_, settings);
    if (session.Code() != result::Success) return session.Code();
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
ResultCode CGsmModem::DeleteAllMessages(std::int32_t all) {
    if (received_.Stored() == 0) return result::NoMoreMessages;
    const bool notifications = all == 1 || all == -1;
    std::string keys;
    CSmsMessageX message;
    for (std::size_t index = 0; received_.ByIndex(index, message) == result::Success; ++index) {
        if (notifications || message.Format != sms::asMESSAGEFORMAT_NOTIFICATION_MMS)
            keys += message.StorageLocation;
    }
    const CGsmDevice::Session session(device_, settings);
    if (session.Code() != result::Success) return session.Code();
    const ResultCode code = DeleteKeys(keys);
    if (code == result::Success) received_.Clear();
    return code;
}

ResultCode CGsmModem::DeleteKeys(std::string_view keys) {
    const std::vector<std::string_view> entries = Split(keys, ";");
    ResultCode first = result::Success;
    for (const GsmStorage& storage : kGsmStorages) {
        bool selected = false;
        for (const std::string_view key : entries) {
            const std::optional<std::int32_t> index = IndexOfKey(storage, key);
            if (!index) continue;
            if (!selected) {
                if (const ResultCode code = device_.Select(storage); code != result::Success) return code;
                selected = true;
            }
            const ResultCode code = device_.Command("AT+CMGD=" + std::to_string(*index));
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
            StorageLogName(settings.messageStorage, StorageUse::kReports));
        if (const ResultCode code = ReadStorages(StorageUse::kReports); code != result::Success) return code;
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
