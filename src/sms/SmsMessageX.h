// The form in which every protocol handles one SMS.
#pragma once
#include "Common/GsmPdu/UserDataHeader.h"
#include "Common/SmppPdu/TLVRecords.h"
#include "sms/SmsConstants.h"

#include <cstdint>
#include <string>

enum class MessageState : std::uint32_t {
    kPending = 1,   // freshly built, or a part that waits for its siblings
    kComplete = 2,  // readable
    kMerged = 3,    // absorbed into a combined message
};

struct CSmsMessageX {
    static constexpr std::int32_t kNotSet = -1;         // the protocol chooses; never sent
    static constexpr std::uint32_t kNoReference = 256;  // part reference of a received single message

    std::string Sender;
    std::string Recipient;
    std::string SMSC;
    std::string Time = "n/a";
    std::string ServiceType;
    std::string Reference;        // what `Send` returned
    std::string StorageLocation;  // where a received message lies in the device; one key after another
    std::u16string Data;          // text; hexadecimal text or one character an octet for the binary formats
    bool RequestDeliveryStatus = false;
    std::uint32_t Id = 0;  // given by the store
    MessageState State = MessageState::kPending;
    std::uint32_t PartReference = 0;
    std::uint32_t PartCount = 0;
    std::uint32_t PartNumber = 0;  // from 1
    std::int32_t Format = sms::asMESSAGEFORMAT_TEXT;
    std::int32_t ValidityPeriod = 0;  // minutes; 0 = none requested
    std::int32_t TimeSecs = 0;        // seconds since 1970
    std::int32_t ReceivedTime = 0;    // the local clock when the record was built from an incoming PDU
    std::int32_t PID = kNotSet;
    std::int32_t DCS = kNotSet;
    std::int32_t ESM = kNotSet;
    std::int32_t SourceTON = kNotSet;
    std::int32_t SourceNPI = kNotSet;
    std::int32_t DestinationTON = kNotSet;
    std::int32_t DestinationNPI = kNotSet;
    std::uint32_t SourcePort = 0;
    std::uint32_t DestinationPort = 0;
    CUserDataHeader UserDataHeader;
    CTLVRecords TlvRecords;

    CSmsMessageX() = default;
    CSmsMessageX(const CSmsMessageX&) = default;
    CSmsMessageX(CSmsMessageX&&) noexcept = default;

    // Copies all but the reference, the storage location and the received time.
    CSmsMessageX& operator=(const CSmsMessageX& other);
    CSmsMessageX& operator=(CSmsMessageX&&) noexcept = default;
    ~CSmsMessageX() = default;

    // Back to the defaults; the received time stays.
    void Clear();

    // Marks a received message as single.
    void SetSinglePart();

    // Takes the ports and the concatenation of the user data header.
    void TakeUserDataHeader();
};
