#include "sms/SmsReceipt.h"

#include "Common/SmppPdu/SmppTime.h"
#include "foundation/Text.h"
#include "sms/SmsConstants.h"

#include <array>
#include <cctype>

namespace {

struct StatWord {
    std::string_view word;
    std::int32_t status;
};

// Tested in this order, a later match overriding an earlier one.
constexpr auto kStatWords = std::to_array<StatWord>({
    {"DELIVRD", sms::asDELIVERYSTATUS_DELIVERED},
    {"EXPIRED", sms::asDELIVERYSTATUS_EXPIRED},
    {"DELETED", sms::asDELIVERYSTATUS_DELETED},
    {"UNDELIV", sms::asDELIVERYSTATUS_UNDELIVERABLE},
    {"ACCEPTD", sms::asDELIVERYSTATUS_ACCEPTED},
    {"UNKNOWN", sms::asDELIVERYSTATUS_UNKNOWN},
    {"REJECTD", sms::asDELIVERYSTATUS_REJECTED},
    {"FAILED", sms::asDELIVERYSTATUS_REJECTED},
    {"DELIVERED", sms::asDELIVERYSTATUS_DELIVERED},
    {"UNDELIVERABLE", sms::asDELIVERYSTATUS_UNDELIVERABLE},
    {"ACCEPTED", sms::asDELIVERYSTATUS_ACCEPTED},
    {"REJECTED", sms::asDELIVERYSTATUS_REJECTED},
    {"ACKED", sms::asDELIVERYSTATUS_ENROUTE},
});

// The text after the key and a colon, up to the next blank. A key that begins a word is preferred to one
// inside a word, so that "valid:" is not taken for "id:".
std::string_view ValueOf(std::string_view text, std::string_view key) {
    const std::string wanted = std::string(key) + ":";
    const std::size_t first = FindNoCase(text, wanted);
    if (first == std::string_view::npos) return {};
    std::size_t at = first;
    while (at != std::string_view::npos && at > 0 &&
           std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0) {
        at = FindNoCase(text, wanted, at + 1);
    }
    if (at == std::string_view::npos) at = first;
    const std::string_view rest = text.substr(at + wanted.size());
    return rest.substr(0, rest.find(' '));
}

}  // namespace

std::int32_t ReceiptStatus(std::string_view stat) {
    std::int32_t status = sms::asDELIVERYSTATUS_SCHEDULED;
    for (const StatWord& row : kStatWords) {
        if (ContainsNoCase(stat, row.word)) status = row.status;
    }
    return status;
}

std::optional<SmsReceipt> ParseReceipt(std::string_view text, Clock& clock) {
    if (!ContainsNoCase(text, "ID")) return std::nullopt;
    std::string normal(text);
    ReplaceAllNoCase(normal, " DATE", "_DATE");
    ReplaceAll(normal, "  ", " ");
    SmsReceipt receipt;
    receipt.id = ValueOf(normal, "ID");
    receipt.status = ReceiptStatus(ValueOf(normal, "STAT"));
    receipt.statusCode = ToInt(ValueOf(normal, "ERR"));
    std::string done(ValueOf(normal, "DONE_DATE"));
    if (done.size() == 12) done += "000+";
    if (done.size() == 10) done += "00000+";
    receipt.completedTime = ParseSmppTime(done, clock);
    return receipt;
}
