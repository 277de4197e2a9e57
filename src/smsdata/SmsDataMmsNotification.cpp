#include "smsdata/SmsDataMmsNotification.h"

#include "Common/Wsp/PushHeader.h"
#include "foundation/Hex.h"

namespace {

constexpr std::string_view kContentType = "application/vnd.wap.mms-message";

// Header fields, OMA-MMS-ENC section 7.3.
namespace header {
constexpr std::uint8_t kContentLocation = 0x83;
constexpr std::uint8_t kExpiry = 0x88;
constexpr std::uint8_t kFrom = 0x89;
constexpr std::uint8_t kMessageClass = 0x8A;
constexpr std::uint8_t kMessageType = 0x8C;
constexpr std::uint8_t kVersion = 0x8D;
constexpr std::uint8_t kMessageSize = 0x8E;
constexpr std::uint8_t kSubject = 0x96;
constexpr std::uint8_t kTransactionId = 0x98;
}  // namespace header

constexpr std::uint8_t kNotificationInd = 0x82;
constexpr std::uint8_t kVersion10 = 0x90;
constexpr std::uint8_t kAddressPresent = 0x80;
constexpr std::uint8_t kAbsoluteTime = 0x80;
constexpr std::uint8_t kLongLength = 4;
constexpr std::int64_t kSecondsPerHour = 3600;

}  // namespace

void CSmsDataMmsNotification::Encode() {
    const std::int64_t now = GetClock().Now();
    std::string transactionId = TransactionId;
    if (transactionId.empty()) hex::AppendNumber(transactionId, static_cast<std::uint32_t>(now));

    OctetWriter out(From.size() + Subject.size() + ContentLocation.size() + transactionId.size());
    WritePortHeader(out, wapport::kPush, wapport::kConnectionlessWsp);
    WritePush(out, ++transaction_, kContentType.size() + 3);
    out.TextString(kContentType);
    out.Octets({0xAF, 0x84});  // X-Wap-Application-Id: the MMS user agent

    out.Octets({header::kMessageType, kNotificationInd, header::kTransactionId});
    out.TextString(transactionId);
    out.Octets({header::kVersion, kVersion10});
    if (!From.empty()) {
        // The length stays one octet also above 30, where the standard's form would begin with a length
        // quote.
        out.Octets({header::kFrom, static_cast<std::uint8_t>(From.size() + 2), kAddressPresent});
        out.TextString(From);
    }
    if (!Subject.empty()) {
        out.Octet(header::kSubject);
        out.TextString(Subject);
    }
    out.Octets(
        {header::kMessageClass, static_cast<std::uint8_t>(Class + 0x80), header::kMessageSize, kLongLength});
    out.Long(static_cast<std::uint32_t>(MessageSize));
    out.Octets({header::kExpiry, kLongLength + 2, kAbsoluteTime, kLongLength});
    out.Long(static_cast<std::uint32_t>(now + Expiration * kSecondsPerHour));
    out.Octet(header::kContentLocation);
    out.TextString(ContentLocation);
    EncodedMessage = hex::Of(out.Written());
}
