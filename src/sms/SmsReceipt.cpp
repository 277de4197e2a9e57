#include "sms/SmsReceipt.h"

#include "Common/SmppPdu/SmppTime.h"
#include "foundation/Text.h"
#include "sms/SmsConstants.h"

#include <algorithm>
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

struct Value {
    std::string_view text;
    bool beginsWord = false;  // its key does
};

// The text after the key and a colon, up to the next blank; blanks before it are skipped. A key that begins a
// word is preferred to one inside a word, so that "valid:" is not taken for "id:".
Value ValueOf(std::string_view text, std::string_view key) {
    const std::string wanted = std::string(key) + ":";
    const std::size_t first = FindNoCase(text, wanted);
    if (first == std::string_view::npos) return {};
    std::size_t at = first;
    while (at != std::string_view::npos && at > 0 &&
           std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0) {
        at = FindNoCase(text, wanted, at + 1);
    }
    const bool beginsWord = at != std::string_view::npos;
    std::string_view rest = text.substr((beginsWord ? at : first) + wanted.size());
    const std::size_t blanks = std::min(rest.size(), rest.find_first_not_of(' '));
    rest.remove_prefix(blanks);
    rest = rest.substr(0, rest.find(' '));
    if (blanks > 0 && rest.find(':') != std::string_view::npos) rest = {};  // the next key
    return {rest, beginsWord};
}

// States of the standard that leave a message on its way; their names stand in receipts as well.
constexpr auto kOpenStates = std::to_array<std::string_view>({"ENROUTE", "SCHEDULED", "SKIPPED", "BUFFERED"});

// A state as receipts name it. Any other word may stand in a text that people write.
bool IsState(std::string_view text) {
    const std::string word = Upper(text);
    return std::ranges::find(kStatWords, word, &StatWord::word) != kStatWords.end() ||
           std::ranges::find(kOpenStates, word) != kOpenStates.end();
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
    const Value id = ValueOf(normal, "ID");
    const Value stat = ValueOf(normal, "STAT");
    receipt.id = id.text;
    receipt.hasState = !stat.text.empty();
    receipt.isWhole = !id.text.empty() && id.beginsWord && IsState(stat.text) && stat.beginsWord;
    receipt.status = ReceiptStatus(stat.text);
    receipt.statusCode = ToInt(ValueOf(normal, "ERR").text);
    std::string done(ValueOf(normal, "DONE_DATE").text);
    if (done.size() == 12) done += "000+";
    if (done.size() == 10) done += "00000+";
    receipt.completedTime = ParseSmppTime(done, clock);
    return receipt;
}
