#include "smsdata/SmsDataMmsNotification.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/PushHeader.h"
#include "foundation/Hex.h"

namespace {

constexpr std::uint8_t kLongLength = 4;
constexpr std::int64_t kSecondsPerHour = 3600;

}  // namespace

void CSmsDataMmsNotification::Encode() {
    const std::int64_t now = GetClock().Now();
    std::string transactionId = TransactionId;
    if (transactionId.empty()) hex::AppendNumber(transactionId, static_cast<std::uint32_t>(now));

    OctetWriter out(From.size() + Subject.size() + ContentLocation.size() + transactionId.size());
    WritePortHeader(out, wapport::kPush, wapport::kConnectionlessWsp);
    WritePush(out, ++transaction_, mms::kContentType.size() + 3);
    out.TextString(mms::kContentType);
    out.Octets({0xAF, 0x84});  // X-Wap-Application-Id: the MMS user agent

    out.Octets({mms::header::kMessageType, mms::type::kNotificationInd, mms::header::kTransactionId});
    out.TextString(transactionId);
    out.Octets({mms::header::kVersion, mms::kVersion10});
    if (!From.empty()) {
        // The length stays one octet also above 30, where the standard's form would begin with a length
        // quote.
        out.Octets({mms::header::kFrom, static_cast<std::uint8_t>(From.size() + 2), mms::kAddressPresent});
        out.TextString(From);
    }
    if (!Subject.empty()) {
        out.Octet(mms::header::kSubject);
        out.TextString(Subject);
    }
    out.Octets({mms::header::kMessageClass,
                static_cast<std::uint8_t>(static_cast<std::uint32_t>(Class) + mms::kClassBase),
                mms::header::kMessageSize, kLongLength});
    out.Long(static_cast<std::uint32_t>(MessageSize));
    out.Octets({mms::header::kExpiry, kLongLength + 2, mms::kAbsoluteTime, kLongLength});
    out.Long(static_cast<std::uint32_t>(now + Expiration * kSecondsPerHour));
    out.Octet(mms::header::kContentLocation);
    out.TextString(ContentLocation);
    EncodedMessage = hex::Of(out.Written());
}
