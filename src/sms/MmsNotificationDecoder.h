// What the received-message store needs of the MMS codec: reading a notification out of a WAP push.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The fields of an m-notification-ind (type 130) or m-delivery-ind (type 134).
struct MmsNotification {
    std::uint8_t messageType = 0;
    std::string contentLocation;
    std::string transactionId;
    std::string from;
    std::uint32_t messageSize = 0;
    std::uint32_t expiry = 0;  // seconds since 1970
    std::string messageId;
    std::string to;
    std::string date;  // seconds since 1970
    std::uint8_t status = 0;
};

class MmsNotificationDecoder {
  public:
    virtual ~MmsNotificationDecoder() = default;

    // Nothing when the octets are no MMS PDU, or a damaged one. Times that the PDU gives from now count from
    // `time` (seconds since 1970).
    virtual std::optional<MmsNotification> Decode(std::string_view pdu, std::int64_t time) = 0;
};
