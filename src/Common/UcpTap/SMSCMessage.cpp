#include "Common/UcpTap/SMSCMessage.h"

#include "foundation/Hex.h"

#include <cstdint>

namespace {

constexpr char kStx = 0x02;
constexpr char kEtx = 0x03;
constexpr char kCarriageReturn = '\r';

constexpr std::string_view kUcpBegin = "01/00000/O/01/";  // transaction, length, operation, its number
constexpr std::string_view kUcpMessageType = "/3/";
constexpr std::size_t kTransactionAt = 1;
constexpr std::size_t kLengthAt = 4;
constexpr std::size_t kLengthDigits = 5;
constexpr std::size_t kUcpChecksum = 2;
constexpr std::size_t kTapChecksum = 3;
constexpr std::string_view kTapLogon = "\x1BPG1";

}  // namespace

ResultCode CSMSCMessage::Begin(std::size_t size) {
    length_ = 0;
    return size <= kCapacity ? result::Success : result::MessageTooLong;
}

void CSMSCMessage::Put(std::string_view octets) {
    length_ += octets.copy(buffer_.data() + length_, octets.size());
}

unsigned CSMSCMessage::SumFrom(std::size_t start) const {
    unsigned sum = 0;
    for (std::size_t i = start; i < length_; ++i) sum += static_cast<std::uint8_t>(buffer_[i]);
    return sum;
}

ResultCode CSMSCMessage::BuildUcp(std::string_view recipient, std::string_view originator,
                                  std::string_view password, std::u16string_view text) {
    const std::size_t size = 1 + kUcpBegin.size() + recipient.size() + 1 + originator.size() + 1 +
                             password.size() + kUcpMessageType.size() + 2 * text.size() + 1 + kUcpChecksum +
                             1;
    if (const ResultCode code = Begin(size); code != result::Success) return code;
    Put(kStx);
    Put(kUcpBegin);
    Put(recipient);
    Put('/');
    Put(originator);
    Put('/');
    Put(password);
    Put(kUcpMessageType);
    hex::WriteLow(text, buffer_.data() + length_);
    length_ += 2 * text.size();
    Put('/');
    std::size_t length = length_ - kTransactionAt + kUcpChecksum;
    for (std::size_t i = kLengthDigits; i-- > 0; length /= 10) {
        buffer_[kLengthAt + i] = static_cast<char>('0' + length % 10);
    }
    // A sum of one digit is that digit and a zero octet: kept as it always was.
    const unsigned sum = SumFrom(kTransactionAt) % 256;
    if (sum < 16) {
        Put(hex::Digit(static_cast<std::uint8_t>(sum)));
        Put('\0');
    } else {
        Put({hex::kPairs[sum].data(), kUcpChecksum});
    }
    Put(kEtx);
    return result::Success;
}

ResultCode CSMSCMessage::BuildTap(std::string_view recipient, std::string_view text) {
    const std::size_t size = 1 + recipient.size() + 1 + text.size() + 2 + kTapChecksum + 1;
    if (const ResultCode code = Begin(size); code != result::Success) return code;
    Put(kStx);
    Put(recipient);
    Put(kCarriageReturn);
    Put(text);
    Put(kCarriageReturn);
    Put(kEtx);
    const unsigned sum = SumFrom(0);
    for (const unsigned shift : {8U, 4U, 0U}) Put(static_cast<char>('0' + (sum >> shift & 15)));
    Put(kCarriageReturn);
    return result::Success;
}

ResultCode CSMSCMessage::BuildTapLogon(std::string_view password) {
    if (const ResultCode code = Begin(kTapLogon.size() + password.size() + 1); code != result::Success) {
        return code;
    }
    Put(kTapLogon);
    Put(password);
    Put(kCarriageReturn);
    return result::Success;
}
