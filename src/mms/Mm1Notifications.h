// The notifications that were read from a modem, known by where their messages lie.
#pragma once
#include "sms/MmsNotificationDecoder.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// Reads as another decoder does, and remembers.
class CMm1Notifications final : public MmsNotificationDecoder {
  public:
    using OnNotification = std::function<void(const MmsNotification& notification)>;

    CMm1Notifications(MmsNotificationDecoder& decoder, OnNotification onNotification)
        : decoder_(&decoder), onNotification_(std::move(onNotification)) {}

    std::optional<MmsNotification> Decode(std::string_view pdu, std::int64_t time) override;

    // The transaction of the notification whose message lies there; empty when none is known.
    std::string TransactionOf(const std::string& contentLocation) const;
    void Clear() { transactions_.clear(); }

  private:
    MmsNotificationDecoder* decoder_;
    OnNotification onNotification_;
    std::map<std::string, std::string> transactions_;  // by content location
};
