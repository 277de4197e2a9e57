#include "smpp/SmppSubmit.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/HeaderElements.h"
#include "Common/GsmPdu/Septets.h"
#include "foundation/Addresses.h"
#include "foundation/Hex.h"
#include "smpp/SmppCharSet.h"
#include "sms/MessageFormats.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::uint8_t kHeaderIndicator = 0x40;  // of esm_class
constexpr std::uint8_t kInternational = 1;       // type of number
constexpr std::uint8_t kIsdn = 1;                // numbering plan
constexpr std::int32_t kSeptetsPerMessage = 160;
constexpr std::int32_t kOctetsPerMessage = 140;
constexpr std::int32_t kUcs2Size = 2;

std::uint8_t CodingOf(const CSmsMessageX& message, const MessageFormat& format, std::int32_t charSet) {
    if (message.DCS != CSmsMessageX::kNotSet) return static_cast<std::uint8_t>(message.DCS);
    const bool isPlainText = format.alphabet == Alphabet::kGsm && !format.flash;
    return isPlainText ? smppcharset::CodingOf(charSet) : format.Dcs();
}

std::string Ucs2Octets(std::u16string_view text) {
    std::string octets;
    octets.reserve(kUcs2Size * text.size());
    for (const char16_t c : text) {
        octets.push_back(static_cast<char>(c >> 8));
        octets.push_back(static_cast<char>(c));
    }
    return octets;
}

std::uint8_t OctetOr(std::int32_t value, std::int32_t fallback) {
    return static_cast<std::uint8_t>(value != CSmsMessageX::kNotSet ? value : fallback);
}

// An address as it goes out: a leading "+" makes it international, whatever is set.
struct Address {
    std::string_view digits;
    std::uint8_t ton, npi;
};

Address AddressOf(std::string_view text, std::uint8_t ton, std::uint8_t npi) {
    if (text.starts_with('+')) return {text.substr(1), kInternational, kIsdn};
    return {text, ton, npi};
}

}  // namespace

std::string SmppValidity(std::int32_t minutes, bool relative, Clock& clock) {
    if (minutes == 0) return {};
    const std::int64_t span = std::int64_t{minutes} * 60;
    const CalendarTime t = relative ? clock.ToLocal(span) : ToUtc(clock.Now() + span);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%02d%02d%02d%02d%02d%02d000%c", t.year - 2000, t.month, t.day,
                  t.hour, t.minute, t.second, relative ? 'R' : '+');
    return text.data();
}

// The body as it goes out.
struct SmppSubmitBuilder::Body {
    std::uint8_t coding = 0;
    Alphabet alphabet = Alphabet::kGsm;  // what the room of a part is counted in
    std::string octets;                  // one a character, two for UCS-2
    std::string callerHeader;            // elements that the caller has put before the data

    // Octets of the body in a part whose header takes so many octets, its length included.
    std::int32_t Room(std::size_t header) const {
        const auto size = static_cast<std::int32_t>(header);
        switch (alphabet) {
            case Alphabet::kOctets:
                return kOctetsPerMessage - size;
            case Alphabet::kUcs2:
                return (kOctetsPerMessage - size) / kUcs2Size * kUcs2Size;
            default:
                return kSeptetsPerMessage - static_cast<std::int32_t>(septets::HeaderSeptets(header));
        }
    }

    // How many octets of what is left of the body go into a part with that much room, when so many parts
    // follow. A part does not end within a character, unless the parts that follow could not take what it
    // leaves.
    std::size_t SizeOfPart(std::string_view left, std::size_t room, std::size_t partsThatFollow) const {
        const std::size_t size = std::min(room, left.size());
        const std::size_t begun = size < left.size() ? BegunAtEnd(left.substr(0, size)) : 0;
        return left.size() - (size - begun) <= partsThatFollow * room ? size - begun : size;
    }

  private:
    // The octets at the end that begin a character of more: an escape, or the first half of a pair.
    std::size_t BegunAtEnd(std::string_view octets) const {
        switch (alphabet) {
            case Alphabet::kGsm:
                return octets.size() -
                       (octets.find_last_not_of(static_cast<char>(CGsmAlphabet::kEscape)) + 1);
            case Alphabet::kUcs2:
                return octets.size() >= kUcs2Size && IsHighSurrogate(octets[octets.size() - kUcs2Size])
                           ? kUcs2Size
                           : 0;
            default:
                return 0;
        }
    }
    static bool IsHighSurrogate(char first) { return (static_cast<std::uint8_t>(first) & 0xFC) == 0xD8; }
};

// How the body is divided.
struct SmppSubmitBuilder::Layout {
    std::size_t parts = 1;
    std::size_t room = 0;        // octets of the body in a part
    std::uint8_t reference = 0;  // of the parts, when there are several
    std::uint32_t port = 0;      // destination; 0 = none
    std::size_t headerSize = 0;  // octets of the elements
};

ResultCode SmppSubmitBuilder::Build(const SmppSettings& settings, const CSmsMessageX& message,
                                    std::vector<std::string>& pdus) {
    if (!address::IsNumber(message.Recipient)) return result::InvalidRecipient;
    if (!CanHold(FormatOf(message.Format), message.Data)) return result::InvalidFormat;
    const Body body = ReadBody(message, settings.charSet);
    Layout layout;
    layout.port = message.DestinationPort;
    if (const ResultCode code = DivideIntoParts(body, layout); code != result::Success) return code;
    PutFields(settings, message, body.coding);
    pdus.resize(layout.parts);
    std::string_view rest = body.octets;
    for (std::size_t part = 0; part < layout.parts; ++part) {
        const std::size_t size = body.SizeOfPart(rest, layout.room, layout.parts - part - 1);
        if (!EncodePart(body.callerHeader, rest.substr(0, size), layout, part, pdus[part]))
            return result::MessageTooLong;
        rest.remove_prefix(size);
    }
    return result::Success;
}

SmppSubmitBuilder::Body SmppSubmitBuilder::ReadBody(const CSmsMessageX& message, std::int32_t charSet) {
    const MessageFormat& format = FormatOf(message.Format);
    Body body;
    body.coding = CodingOf(message, format, charSet);
    if (format.alphabet == Alphabet::kOctets) {
        body.alphabet = Alphabet::kOctets;
        body.octets = hex::OctetsOf(std::u16string_view(message.Data));
    } else if ((body.coding & smppcharset::kUcs2) != 0) {
        body.alphabet = Alphabet::kUcs2;
        body.octets = Ucs2Octets(message.Data);
    } else {
        if ((body.coding & smppcharset::kData) != 0) body.alphabet = Alphabet::kOctets;
        body.octets = smppcharset::Encode(message.Data, body.coding, charSet);
    }
    if (message.Format == sms::asMESSAGEFORMAT_DATA_UDH && !body.octets.empty()) {
        const std::size_t size = static_cast<std::uint8_t>(body.octets.front());
        body.callerHeader = body.octets.substr(1, size);
        body.octets.erase(0, 1 + size);
    }
    return body;
}

ResultCode SmppSubmitBuilder::DivideIntoParts(const Body& body, Layout& layout) {
    layout.headerSize = body.callerHeader.size() + (layout.port != 0 ? udh::kPortsSize : 0);
    const auto room = [&] { return body.Room(layout.headerSize != 0 ? 1 + layout.headerSize : 0); };
    const auto length = static_cast<std::int32_t>(body.octets.size());
    std::int32_t size = room();
    if (length > size) {
        layout.headerSize += udh::kConcatenationSize;
        size = room();
        if (size < 1) return result::MessageTooLong;
        const std::int32_t parts = (length + size - 1) / size;
        if (parts > udh::kMostParts) return result::MessageTooLong;
        layout.parts = static_cast<std::size_t>(parts);
        layout.reference = references_.Next(clock_->Ticks());
    }
    layout.room = static_cast<std::size_t>(size);
    return result::Success;
}

// What all parts have in common.
void SmppSubmitBuilder::PutFields(const SmppSettings& settings, const CSmsMessageX& message,
                                  std::uint8_t coding) {
    const Address source = AddressOf(message.Sender.empty() ? settings.sourceAddress : message.Sender,
                                     OctetOr(message.SourceTON, settings.sourceTon),
                                     OctetOr(message.SourceNPI, settings.sourceNpi));
    const Address target =
        AddressOf(message.Recipient, OctetOr(message.DestinationTON, settings.destinationTon),
                  OctetOr(message.DestinationNPI, settings.destinationNpi));
    pdu_.service_type = message.ServiceType;
    pdu_.source_addr_ton = source.ton;
    pdu_.source_addr_npi = source.npi;
    pdu_.source_addr = source.digits;
    pdu_.dest_addr_ton = target.ton;
    pdu_.dest_addr_npi = target.npi;
    pdu_.destination_addr = target.digits;
    pdu_.esm_class = OctetOr(message.ESM, 0);
    pdu_.protocol_id = OctetOr(message.PID, 0);
    pdu_.validity_period = SmppValidity(message.ValidityPeriod, settings.relativeValidity, *clock_);
    pdu_.registered_delivery = message.RequestDeliveryStatus ? 1 : 0;
    pdu_.data_coding = coding;
    pdu_.tlvs = message.TlvRecords;
}

// The elements of the header stand in this order: concatenation, port, the caller's own. False when the
// optional parameters burst the PDU.
bool SmppSubmitBuilder::EncodePart(std::string_view callerHeader, std::string_view data, const Layout& layout,
                                   std::size_t part, std::string& octets) {
    std::string& text = pdu_.short_message;
    text.clear();
    const auto put = [&text](const auto& element) { text.append(element.begin(), element.end()); };
    if (layout.headerSize != 0) {
        pdu_.esm_class |= kHeaderIndicator;
        text.push_back(static_cast<char>(layout.headerSize));
    }
    if (layout.parts > 1) {
        put(udh::Concatenation(layout.reference, static_cast<std::uint8_t>(layout.parts),
                               static_cast<std::uint8_t>(part + 1)));
    }
    if (layout.port != 0) put(udh::Ports(static_cast<std::uint16_t>(layout.port), 0));
    text.append(callerHeader).append(data);
    pdu_.Encode();
    const auto encoded = pdu_.Data();
    octets.assign(reinterpret_cast<const char*>(encoded.data()), encoded.size());
    return pdu_.IsWhole();
}
