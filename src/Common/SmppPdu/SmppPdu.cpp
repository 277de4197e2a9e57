#include "Common/SmppPdu/SmppPdu.h"

#include "Common/SmppPdu/TLVTags.h"
#include "foundation/Assertion.h"
#include "foundation/HexDump.h"

#include <array>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr const char* kSource = R"(Common\SmppPdu\SmppPdu)";
constexpr std::size_t kBufferSize = 65538;
constexpr std::size_t kTlvLimit = 256;

__attribute__((format(printf, 2, 3))) void Append(std::string& text, const char* format, ...) {
    std::array<char, 512> line{};
    va_list arguments;
    va_start(arguments, format);
    const int size = std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    text.append(line.data(), std::min(line.size() - 1, static_cast<std::size_t>(std::max(size, 0))));
}

}  // namespace

CSmppPdu::CSmppPdu() : buffer_(std::make_unique<std::uint8_t[]>(kBufferSize)) {}

CSmppPdu::CSmppPdu(std::span<const std::uint8_t> octets) : CSmppPdu() {
    Load(octets);
    DecodeHeader();
}

// Only what was used is cleared.
void CSmppPdu::ResetBase() {
    std::memset(buffer_.get(), 0, std::min(length_, kBufferSize));
    in_ = OctetReader({});
    length_ = 0;
    dumpFlags_ = 0;
    command_length = command_id = command_status = sequence_number = 0;
    tlvs.Clear();
}

void CSmppPdu::Load(std::span<const std::uint8_t> octets) {
    Assert(octets.size() < kCapacity, kSource, __LINE__);
    length_ = std::min(octets.size(), kCapacity);
    std::memcpy(buffer_.get(), octets.data(), length_);
}

std::size_t CSmppPdu::GetData(std::span<std::uint8_t> octets) const {
    const auto data = Data().first(std::min(octets.size(), Data().size()));
    std::ranges::copy(data, octets.begin());
    return data.size();
}

void CSmppPdu::Put(std::string_view octets) {
    if (length_ < kCapacity - 1) {
        std::memcpy(&buffer_[length_], octets.data(), std::min(octets.size(), kCapacity - 1 - length_));
    }
    length_ += octets.size();
}

void CSmppPdu::PutInteger(std::uint32_t value, std::size_t octets) {
    for (std::size_t i = octets; i-- > 0;) Put(static_cast<std::uint8_t>(value >> (8 * i)));
}

void CSmppPdu::BeginEncoding(std::uint32_t commandId) {
    // A negative acknowledgement is reset before its header is written: its status and sequence are always 0.
    if (commandId == smpp::kGenericNack) ResetBase();
    length_ = 0;
    command_id = commandId;
    PutInteger(command_length, 4);
    PutInteger(command_id, 4);
    PutInteger(command_status, 4);
    PutInteger(sequence_number, 4);
}

void CSmppPdu::EncodeTlvs() {
    for (const CTLVRecord& record : tlvs) {
        PutInteger(record.tag, 2);
        const auto size = static_cast<std::uint32_t>(record.text.size());
        switch (record.type) {
            case TLVType::kByte:
                PutInteger(1, 2);
                PutInteger(record.byteValue, 1);
                break;
            case TLVType::kWord:
                PutInteger(2, 2);
                PutInteger(record.wordValue, 2);
                break;
            case TLVType::kLong:
                PutInteger(4, 2);
                PutInteger(record.longValue, 4);
                break;
            case TLVType::kCOctet:
                PutInteger(size + 1, 2);
                for (const char16_t c : record.text) Put(static_cast<std::uint8_t>(c));
                Put(std::uint8_t{0});
                break;
            case TLVType::kUnicode:
                PutInteger(2 * size, 2);
                for (const char16_t c : record.text) PutInteger(c, 2);
                break;
            default:
                PutInteger(size, 2);
                for (const char16_t c : record.text) Put(static_cast<std::uint8_t>(c));
                break;
        }
    }
}

void CSmppPdu::FinishEncoding() {
    command_length = static_cast<std::uint32_t>(length_);
    for (std::size_t i = 0; i < 4; ++i)
        buffer_[i] = static_cast<std::uint8_t>(command_length >> (24 - 8 * i));
}

void CSmppPdu::GetOctets(std::string& text, std::size_t count) {
    text = in_.Take(count);
    text.resize(count, '\0');
}

void CSmppPdu::DecodeHeader() {
    in_ = OctetReader({reinterpret_cast<const char*>(buffer_.get()), length_});
    command_length = in_.Number(4);
    command_id = in_.Number(4);
    command_status = in_.Number(4);
    sequence_number = in_.Number(4);
}

// A length is capped at 256 for every tag but message_payload, and integers are read by their type whatever
// the length says; what follows a longer value is then read out of step. Kept so.
void CSmppPdu::DecodeTlvs() {
    for (std::uint32_t tag = in_.Number(2); tag != 0; tag = in_.Number(2)) {
        std::size_t length = in_.Number(2);
        if (length == 0) return;
        if (tag != tlv::kMessagePayload) length = std::min(length, kTlvLimit);
        CTLVRecord record;
        record.tag = tag;
        record.type = TypeOfTag(tag);
        std::string octets;
        switch (record.type) {
            case TLVType::kByte:
                record.SetInteger(in_.Number(1));
                break;
            case TLVType::kWord:
                record.SetInteger(in_.Number(2));
                break;
            case TLVType::kLong:
                record.SetInteger(in_.Number(4));
                break;
            case TLVType::kCOctet:
                GetCString(octets);
                break;
            default:
                GetOctets(octets, length);
                break;
        }
        record.text.resize(octets.size());
        std::ranges::transform(octets, record.text.begin(),
                               [](char c) { return static_cast<unsigned char>(c); });
        tlvs.AddOrReplace(std::move(record));
    }
}

// --- dumps

void CSmppPdu::DumpHead(std::string& text) const {
    if ((dumpFlags_ & kDumpHeader) == 0) return;
    Append(text, "PDU Length             : 0x%08X\n", command_length);
    Append(text, "PDU Type               : %s\n", std::string(CommandName(command_id)).c_str());
    const std::string_view status = StatusName(command_status);
    if (status.empty()) {
        Append(text, "PDU Result Code        : 0x%08X\n", command_status);
    } else {
        Append(text, "PDU Result Code        : %s\n", std::string(status).c_str());
    }
    Append(text, "PDU Sequence Number    : 0x%08X\n", sequence_number);
}

void CSmppPdu::DumpTail(std::string& text) const {
    if ((dumpFlags_ & kDumpBody) != 0) {
        for (const CTLVRecord& record : tlvs) {
            Append(text, "Optional Parameter     : 0x%04X (%-30.30s), ", record.tag,
                   std::string(NameOfTag(record.tag)).c_str());
            switch (record.type) {
                case TLVType::kByte:
                    Append(text, "1-Byte  Value: 0x%04X\n", record.byteValue);
                    break;
                case TLVType::kWord:
                    Append(text, "2-Byte  Value: 0x%04X\n", record.wordValue);
                    break;
                case TLVType::kLong:
                    Append(text, "4-Byte  Value: 0x%04X\n", record.longValue);
                    break;
                case TLVType::kCOctet:
                    text += "C-Octet Value: [DATA]\n";
                    break;
                default:
                    text += "Octet   Value: [DATA]\n";
                    break;
            }
        }
    }
    if ((dumpFlags_ & kDumpHex) != 0) {
        text += "\nPDU HEX Dump:\n\n";
        DumpOctets(text, {reinterpret_cast<const char*>(Data().data()), Data().size()});
    }
}

void CSmppPdu::Dumper::CString(const char* label, const std::string& value) {
    Append(*text_, "%-23s: ", label);
    text_->append(value).append("\n");
}

void CSmppPdu::Dumper::Byte(const char* label, std::uint8_t value) {
    Append(*text_, "%-23s: 0x%02X\n", label, value);
}

void CSmppPdu::Dumper::ShortMessage(const std::string& text, std::uint8_t esmClass) {
    Append(*text_, "Short Message Length   : %d\n", static_cast<int>(text.size()));
    std::span<const std::uint8_t> octets(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    if ((esmClass & 0x40) != 0 && !octets.empty()) {
        const std::size_t header = std::min<std::size_t>(octets[0], octets.size() - 1);
        Append(*text_, "User Data Header Len   : %d\n", octets[0]);
        *text_ += "User Data Header       : ";
        for (const std::uint8_t octet : octets.subspan(1, header)) Append(*text_, "%02X ", octet);
        *text_ += '\n';
        octets = octets.subspan(1 + header);
    }
    *text_ += "Short Message Data     :\n\n";
    DumpOctets(*text_, {reinterpret_cast<const char*>(octets.data()), octets.size()});
}
