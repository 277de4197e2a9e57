// The encoder from script arguments: every property of a message in, whole SMS-SUBMIT PDUs out.
#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/Septets.h"
#include "Fuzz.h"
#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/OctetReader.h"
#include "foundation/Text.h"
#include "gsm/GsmCodec.h"
#include "gsm/PDUDecode.h"
#include "sms/MessageFormats.h"

#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

std::u16string WideText(FuzzedDataProvider& in, std::size_t longest) {
    const std::string octets = in.ConsumeRandomLengthString(longest);
    std::u16string text;
    const bool wide = in.ConsumeBool();  // two octets a character; otherwise one
    for (std::size_t i = 0; i + (wide ? 2 : 1) <= octets.size(); i += wide ? 2 : 1) {
        const auto first = static_cast<std::uint8_t>(octets[i]);
        text += wide ? static_cast<char16_t>(first << 8 | static_cast<std::uint8_t>(octets[i + 1])) : first;
    }
    return text;
}

// The text of one submit PDU after a network has delivered it.
std::u16string Delivered(const std::string& pdu, const GsmSubmit& submit) {
    const std::string octets = hex::OctetsOf(std::string_view(pdu));
    Require(hex::Of(octets) == pdu && octets.size() <= 1 + 12 + 164);
    OctetReader in(octets);
    in.Skip(in.Octet());
    const std::uint8_t first = in.Octet();
    Require((first & 0x03) == 0x01 && ((first & 0x10) != 0) == (submit.validityPeriod != 0) &&
            ((first & 0x20) != 0) == submit.requestReport);
    in.Skip(1);  // TP-MR
    const std::size_t address = in.Position();
    in.Skip(1 + (in.Octet() + 1U) / 2);
    const std::string_view addressAndCoding =
        std::string_view(octets).substr(address, in.Position() + 2 - address);
    in.Skip(2);
    if (submit.validityPeriod != 0) Require(in.Octet() == ValidityOctet(submit.validityPeriod));
    const std::string_view data = in.Take(in.Left());
    Require(!in.Overrun());

    const std::uint8_t dcs = static_cast<std::uint8_t>(addressAndCoding.back());
    const auto length = static_cast<std::uint8_t>(data.front());
    const std::size_t dataOctets = (dcs & 0x0C) == 0 ? (length * 7U + 7) / 8 : length;
    Require(data.size() == 1 + dataOctets && dataOctets <= 140);

    const char kind = static_cast<char>(first & 0x40);
    CPDUDecode decode;
    Require(decode.Decode("00" + hex::Of({&kind, 1}) + hex::Of(addressAndCoding) + "62111240618000" +
                          hex::Of(data)));
    return decode.body;
}

// What all parts together say; GSM text as far as one part holds it.
std::u16string Meant(const GsmSubmit& submit, Alphabet alphabet) {
    switch (alphabet) {
        case Alphabet::kUcs2:
            return std::u16string(submit.body);
        case Alphabet::kOctets: {
            std::u16string octets;
            for (const char octet : hex::OctetsOf(submit.body)) octets += static_cast<std::uint8_t>(octet);
            if (submit.format == 11 && !octets.empty()) octets.erase(0, 1U + octets.front());
            return octets;
        }
        default: {
            std::vector<std::uint8_t> codes(2 * submit.body.size());
            codes.resize(CGsmAlphabet::Encode(submit.body, codes.data()));
            const std::size_t room = 160 - (submit.destinationPort != 0 ? septets::HeaderSeptets(7) : 0);
            codes.resize(std::min(codes.size(), room));
            std::u16string text(codes.size(), u'\0');
            text.resize(CGsmAlphabet::Decode(codes, text.data()));
            return text;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    GsmSubmit submit;
    submit.format = in.PickValueInArray({0, 1, 2, 3, 10, 11, 20, 21, 22, 23, 30, 77, -1});
    submit.validityPeriod = in.ConsumeBool() ? in.ConsumeIntegral<std::int32_t>() : 0;
    submit.requestReport = in.ConsumeBool();
    const Recipient recipient = ParseRecipient(in.ConsumeRandomLengthString(80));
    const std::string smsc = in.ConsumeRandomLengthString(30);
    std::u16string body = WideText(in, 60'000);
    // Data is hexadecimal in half of the inputs.
    const Alphabet alphabet = FormatOf(submit.format).alphabet;
    if (alphabet == Alphabet::kOctets && in.ConsumeBool()) {
        std::string octets;
        for (const char16_t c : body) octets += static_cast<char>(c);
        const std::string digits = hex::Of(octets);
        body.assign(digits.begin(), digits.end());
    }
    submit.recipient = recipient.address;
    submit.smsc = smsc;
    submit.body = body;
    submit.destinationPort = static_cast<std::uint16_t>(recipient.port);

    CGsmCodec codec(0xFF);
    const ResultCode code = codec.Encode(submit);
    Require(code == result::Success || code == result::InvalidRecipient || code == result::InvalidFormat ||
            code == result::MessageTooLong);
    Require((code == result::Success) != codec.Text().empty());
    if (code != result::Success) return 0;

    std::u16string said;
    const std::size_t parts = Split(codec.Text(), ";").size() - 1;
    Require(parts >= 1 && parts <= 255 && codec.Text().back() == ';');
    for (const std::string_view pdu : Split(codec.Text(), ";")) {
        if (!pdu.empty()) said += Delivered(std::string(pdu), submit);
    }
    const std::u16string meant = Meant(submit, alphabet);
    if (alphabet == Alphabet::kGsm) {
        // An escape that two parts divide is lost in reading part by part.
        Require(parts > 1 || said == meant);
    } else if (submit.format != 11 || !submit.body.starts_with(u"00")) {
        // Not behind a caller's header of no octets, whose indicator stays and takes the data for a header.
        Require(FormatOf(submit.format).multipart ? said == meant : meant.starts_with(said));
    }
    return 0;
}
