// An SMPP protocol data unit: the header, the buffer and the optional parameters that all have in common.
// A class lists its body fields once (`Fields`); encoder, decoder and dump are three visitors of that list.
#pragma once
#include "Common/SmppPdu/SmppNames.h"
#include "Common/SmppPdu/TLVRecords.h"
#include "foundation/OctetReader.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

class CSmppPdu {
  public:
    static constexpr std::size_t kCapacity = 65536;
    static constexpr std::size_t kHeaderSize = 16;

    enum DumpFlags : std::uint32_t { kDumpHeader = 1, kDumpBody = 2, kDumpHex = 4 };

    CSmppPdu();
    // Takes at most 65,536 octets and reads the header.
    explicit CSmppPdu(std::span<const std::uint8_t> octets);
    CSmppPdu(const CSmppPdu&) = delete;
    CSmppPdu& operator=(const CSmppPdu&) = delete;
    virtual ~CSmppPdu() = default;

    // True when both carry the same sequence_number: a response belongs to its request.
    virtual bool IsSameSequence(const CSmppPdu& other) const {
        return sequence_number == other.sequence_number;
    }

    // The octets: those that encoding has made, or that were loaded.
    std::span<const std::uint8_t> Data() const {
        return {buffer_.get(), std::min<std::size_t>(length_, kCapacity)};
    }
    std::size_t GetData(std::span<std::uint8_t> octets) const;
    // False when encoding has made more octets than there is room for, so that the end is missing.
    bool IsWhole() const { return length_ < kCapacity; }

    void SetDumpFlags(std::uint32_t flags) { dumpFlags_ = flags; }

    std::uint32_t command_length = 0;
    std::uint32_t command_id = 0;
    std::uint32_t command_status = 0;
    std::uint32_t sequence_number = 0;
    CTLVRecords tlvs;

  protected:
    void ResetBase();
    void Load(std::span<const std::uint8_t> octets);

    // Writing counts every octet but stores only what fits.
    void Put(std::uint8_t octet) {
        if (length_ < kCapacity - 1) buffer_[length_] = octet;
        ++length_;
    }
    void Put(std::string_view octets);
    void PutInteger(std::uint32_t value, std::size_t octets);
    void BeginEncoding(std::uint32_t commandId);
    void EncodeTlvs();
    void FinishEncoding();

    // Reading past the end gives zeros.
    std::uint8_t Get() { return in_.Octet(); }
    void GetCString(std::string& text) { text = in_.TextString(); }
    void GetOctets(std::string& text, std::size_t count);
    void DecodeHeader();
    void DecodeTlvs();

    void DumpHead(std::string& text) const;
    void DumpTail(std::string& text) const;
    std::uint32_t Flags() const { return dumpFlags_; }

    class Encoder;
    class Decoder;
    class Dumper;

  private:
    std::unique_ptr<std::uint8_t[]> buffer_;
    OctetReader in_{{}};
    std::size_t length_ = 0;
    std::uint32_t dumpFlags_ = 0;
};

class CSmppPdu::Encoder {
  public:
    explicit Encoder(CSmppPdu& pdu) : pdu_(&pdu) {}
    // A zero in the text ends it, as it does for who reads it.
    void CString(const char* /*label*/, const std::string& text) {
        pdu_->Put(std::string_view(text).substr(0, text.find('\0')));
        pdu_->Put(std::uint8_t{0});
    }
    void Byte(const char* /*label*/, std::uint8_t value) { pdu_->Put(value); }
    void ShortMessage(const std::string& text, std::uint8_t /*esmClass*/) {
        pdu_->Put(static_cast<std::uint8_t>(text.size()));
        pdu_->Put(std::string_view(text).substr(0, text.size() & 0xFF));
    }

  private:
    CSmppPdu* pdu_;
};

class CSmppPdu::Decoder {
  public:
    explicit Decoder(CSmppPdu& pdu) : pdu_(&pdu) {}
    void CString(const char* /*label*/, std::string& text) { pdu_->GetCString(text); }
    void Byte(const char* /*label*/, std::uint8_t& value) { value = pdu_->Get(); }
    void ShortMessage(std::string& text, std::uint8_t /*esmClass*/) { pdu_->GetOctets(text, pdu_->Get()); }

  private:
    CSmppPdu* pdu_;
};

class CSmppPdu::Dumper {
  public:
    explicit Dumper(std::string& text) : text_(&text) {}
    void CString(const char* label, const std::string& value);
    void Byte(const char* label, std::uint8_t value);
    void ShortMessage(const std::string& text, std::uint8_t esmClass);

  private:
    std::string* text_;
};

// The operations of one class of PDU, made from its field list.
template <class Body, std::uint32_t CommandId>
class TypedPdu : public CSmppPdu, public Body {
  public:
    static constexpr std::uint32_t kCommandId = CommandId;

    TypedPdu() { command_id = 0; }

    void Reset() {
        ResetBase();
        static_cast<Body&>(*this) = Body{};
    }
    void SetData(std::span<const std::uint8_t> octets) {
        Reset();
        Load(octets);
    }
    void Encode() {
        BeginEncoding(CommandId);
        Encoder io(*this);
        Body::Fields(io);
        EncodeTlvs();
        FinishEncoding();
    }
    void Decode() {
        DecodeHeader();
        Decoder io(*this);
        Body::Fields(io);
        if constexpr (Body::kHasTlvs) DecodeTlvs();
        if constexpr (requires(Body & body, CTLVRecords & list) { body.ReadText(list); })
            Body::ReadText(tlvs);
    }
    void Dump(std::string& text) {
        DumpHead(text);
        if ((Flags() & kDumpBody) != 0) {
            Dumper io(text);
            Body::Fields(io);
        }
        DumpTail(text);
    }
};
