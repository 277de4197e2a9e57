#include "mms/MmsNotificationReader.h"

#include "Common/Wsp/MmsNumbers.h"
#include "mms/MMSECodec.h"
#include "mms/MmsAddresses.h"

namespace {

std::uint32_t ExpiryIn(const MmsField& field, std::int64_t time) {
    const std::uint64_t start = field.token == mms::kRelativeTime ? static_cast<std::uint64_t>(time) : 0;
    return static_cast<std::uint32_t>(start + field.value);
}

class NotificationReader final : public MmsNotificationDecoder {
  public:
    std::optional<MmsNotification> Decode(std::string_view pdu, std::int64_t time) override {
        CMMSECodec unit;
        if (unit.Decode(pdu) != 0) return std::nullopt;
        const MmsField& date = unit.Field(mms::header::kDate);
        MmsNotification read;
        read.messageType = unit.MessageType();
        read.contentLocation = unit.Field(mms::header::kContentLocation).text;
        read.transactionId = unit.Field(mms::header::kTransactionId).text;
        read.from = mms::AddressIn(unit.Field(mms::header::kFrom));
        read.messageSize = static_cast<std::uint32_t>(unit.Field(mms::header::kMessageSize).value);
        read.expiry = ExpiryIn(unit.Field(mms::header::kExpiry), time);
        read.messageId = unit.Field(mms::header::kMessageId).text;
        read.to = mms::AddressIn(unit.Field(mms::header::kTo));
        if (date.number != 0) read.date = std::to_string(date.value);
        read.status = static_cast<std::uint8_t>(unit.Field(mms::header::kStatus).token);
        return read;
    }
};

}  // namespace

MmsNotificationDecoder& MmsNotifications() {
    static NotificationReader reader;
    return reader;
}
