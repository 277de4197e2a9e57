#include "smpp/SmppReceived.h"

#include "Common/SmppPdu/TLVTags.h"
#include "smpp/SmppCharSet.h"

#include <string>

namespace {

constexpr std::uint8_t kInternational = 1;  // type of number

std::string Number(const std::string& digits, std::uint8_t ton) {
    return ton == kInternational && !digits.empty() && digits.front() != '+' ? "+" + digits : digits;
}

void TakeAddresses(const SmppAddressFields& fields, CSmsMessageX& message) {
    message.Sender = Number(fields.source_addr, fields.source_addr_ton);
    message.Recipient = Number(fields.destination_addr, fields.dest_addr_ton);
    message.ServiceType = fields.service_type;
    message.SourceTON = fields.source_addr_ton;
    message.SourceNPI = fields.source_addr_npi;
    message.DestinationTON = fields.dest_addr_ton;
    message.DestinationNPI = fields.dest_addr_npi;
}

void TakeText(const SmppReceivedText& text, std::uint8_t dataCoding, std::int32_t charSet,
              CSmsMessageX& message) {
    using smppcharset::Coding;
    message.DCS = dataCoding;
    switch (smppcharset::KindOf(dataCoding)) {
        case Coding::kText:
            message.Format = sms::asMESSAGEFORMAT_TEXT;
            message.Data = smppcharset::Decode(text.message, dataCoding, charSet);
            return;
        case Coding::kData:
            message.Format = sms::asMESSAGEFORMAT_DATA;
            break;
        case Coding::kUcs2:
            message.Format = sms::asMESSAGEFORMAT_UNICODE;
            break;
    }
    message.Data = text.message;
}

void TakeTime(Clock& clock, CSmsMessageX& message) {
    message.ReceivedTime = static_cast<std::int32_t>(clock.Now());
    message.TimeSecs = message.ReceivedTime;
    message.Time = TimeText(clock, message.TimeSecs);
}

void TakeSegmentation(const CTLVRecords& tlvs, CSmsMessageX& message) {
    message.SetSinglePart();
    const CTLVRecord* total = tlvs.Find(tlv::kSarTotalSegments);
    if (total == nullptr) return;
    const CTLVRecord* number = tlvs.Find(tlv::kSarSegmentNumber);
    const CTLVRecord* reference = tlvs.Find(tlv::kSarMessageReference);
    message.PartCount = total->byteValue;
    message.PartNumber = number != nullptr ? number->byteValue : 0;
    message.PartReference = reference != nullptr ? reference->wordValue : 0;
}

template <class Pdu>
CSmsMessageX MessageOf(const Pdu& pdu, const SmppReceivedText& text, std::int32_t charSet, Clock& clock) {
    CSmsMessageX message;
    TakeAddresses(pdu, message);
    TakeText(text, pdu.data_coding, charSet, message);
    TakeTime(clock, message);
    message.ESM = pdu.esm_class;
    message.TlvRecords = pdu.tlvs;
    TakeSegmentation(pdu.tlvs, message);
    message.UserDataHeader = text.userDataHeader;
    message.TakeUserDataHeader();  // its numbering goes before that of the optional parameters
    return message;
}

}  // namespace

CSmsMessageX SmppReceivedMessage(const CSmppDeliverSm& pdu, std::int32_t charSet, Clock& clock) {
    CSmsMessageX message = MessageOf(pdu, pdu, charSet, clock);
    message.PID = pdu.protocol_id;
    return message;
}

CSmsMessageX SmppReceivedMessage(const CSmppDataSm& pdu, std::int32_t charSet, Clock& clock) {
    SmppReceivedText text;
    text.Read({}, pdu.tlvs, pdu.esm_class, pdu.data_coding);
    return MessageOf(pdu, text, charSet, clock);
}
