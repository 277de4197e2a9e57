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
    std::uint32_t expiry = 0;
    std::string messageId;
    std::string to;
    std::string date;
    std::uint8_t status = 0;
};

class MmsNotificationDecoder {
  public:
    virtual ~MmsNotificationDecoder() = default;

    // Nothing when the octets are no MMS PDU.
    virtual std::optional<MmsNotification> Decode(std::string_view pdu) = 0;
};
