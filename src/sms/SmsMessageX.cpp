#include "sms/SmsMessageX.h"

#include <utility>

CSmsMessageX& CSmsMessageX::operator=(const CSmsMessageX& other) {
    if (this == &other) return *this;
    CSmsMessageX copy(other);
    copy.Reference = std::move(Reference);
    copy.StorageLocation = std::move(StorageLocation);
    copy.ReceivedTime = ReceivedTime;
    return *this = std::move(copy);
}

void CSmsMessageX::Clear() {
    const std::int32_t received = ReceivedTime;
    *this = CSmsMessageX{};
    ReceivedTime = received;
}

void CSmsMessageX::SetSinglePart() {
    PartCount = 1;
    PartNumber = 1;
    PartReference = kNoReference;
}

void CSmsMessageX::TakeUserDataHeader() {
    using Value = CUserDataHeader::Value;
    if (const std::uint32_t total = UserDataHeader.Get(Value::kTotal); total != 0) {
        PartCount = total;
        PartNumber = UserDataHeader.Get(Value::kSequence);
        PartReference = UserDataHeader.Get(Value::kReference);
    }
    const std::uint32_t source = UserDataHeader.Get(Value::kSourcePort16);
    const std::uint32_t destination = UserDataHeader.Get(Value::kDestinationPort16);
    SourcePort = source != 0 ? source : UserDataHeader.Get(Value::kSourcePort8);
    DestinationPort = destination != 0 ? destination : UserDataHeader.Get(Value::kDestinationPort8);
}
