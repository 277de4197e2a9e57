// The SMS-SUBMIT encoder, 3GPP TS 23.040 section 9.2.2.2: one hexadecimal PDU per part of a message.
#pragma once
#include "foundation/ResultCode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What is to be encoded.
struct GsmSubmit {
    std::string_view smsc;  // empty: the modem's own
    std::string_view recipient;
    std::u16string_view body;         // text, or hexadecimal text for the data formats
    std::int32_t format = 0;          // asMESSAGEFORMAT_...
    std::int32_t validityPeriod = 0;  // minutes; 0 = none
    bool requestReport = false;
    std::uint16_t destinationPort = 0;  // 0 = none
};

class CGsmCodec {
  public:
    // Counts concatenation references up from the given one. By default clock and process choose it, so that
    // a phone does not mix up the messages of two runs.
    explicit CGsmCodec(std::uint32_t reference = FirstReference()) : reference_(reference) {}

    // 0; 34031 when the recipient or the service centre is no number; 34034 when data is no hexadecimal;
    // 34033 when the message does not fit: format 10 needs more than one part, a caller's header leaves no
    // room, or more than 255 parts would be needed.
    ResultCode Encode(const GsmSubmit& submit);

    // The PDUs of the last Encode, each as upper-case hexadecimal followed by ";".
    const std::string& Text() const { return text_; }

    // The concatenation reference of the last message that needed several parts; counts up, 8 bits are used.
    std::uint32_t Reference() const { return reference_; }

  private:
    struct Plan;  // how the body is laid out over the parts

    static std::uint32_t FirstReference();

    void ReadBody(const GsmSubmit& submit, Plan& plan);
    ResultCode DivideIntoParts(Plan& plan);
    void EncodePart(const GsmSubmit& submit, const Plan& plan, std::size_t part);

    void Put(std::uint8_t octet) { pdu_[count_++] = octet; }
    void Put(std::span<const std::uint8_t> octets) {
        std::ranges::copy(octets, &pdu_[count_]);
        count_ += octets.size();
    }
    void PutAddress(std::string_view number, bool countDigits);
    void PutHeader(const GsmSubmit& submit, const Plan& plan, std::size_t part);
    std::size_t PutUserData(const Plan& plan, std::size_t part, std::size_t headerOctets);

    std::uint32_t reference_;
    std::vector<std::uint8_t> units_;  // GSM codes or octets of the whole body
    std::array<std::uint8_t, 256> pdu_{};
    std::size_t count_ = 0;
    std::string text_;
};

// The relative validity period octet of a number of minutes that is not 0.
std::uint8_t ValidityOctet(std::int32_t minutes);
