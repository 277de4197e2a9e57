#include "mms/Mm1Notifications.h"

#include "Common/Wsp/MmsNumbers.h"

std::optional<MmsNotification> CMm1Notifications::Decode(std::string_view pdu, std::int64_t time) {
    auto unit = decoder_->Decode(pdu, time);
    if (unit && unit->messageType == mms::type::kNotificationInd) {
        transactions_.insert_or_assign(unit->contentLocation, unit->transactionId);
        onNotification_(*unit);
    }
    return unit;
}

std::string CMm1Notifications::TransactionOf(const std::string& contentLocation) const {
    const auto found = transactions_.find(contentLocation);
    return found != transactions_.end() ? found->second : std::string();
}
