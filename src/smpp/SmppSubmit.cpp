#include "smpp/SmppSubmit.h"

#include "Common/GsmPdu/Septets.h"
#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/Text.h"
#include "smpp/SmppCharSet.h"

#include <array>
#include <cstdio>

namespace {

constexpr std::uint8_t kData = 0x04;
constexpr std::uint8_t kUcs2 = 0x08;
constexpr std::uint8_t kHeaderIndicator = 0x40;
constexpr std::int32_t kMostParts = 255;

std::uint8_t CodingOf(const CSmsMessageX& message, std::int32_t charSet) {
    if (message.DCS != CSmsMessageX::kNotSet) return static_cast<std::uint8_t>(message.DCS);
    switch (message.Format) {
        case sms::asMESSAGEFORMAT_TEXT_FLASH:
        case sms::asMESSAGEFORMAT_TEXT_MULTIPART_FLASH:
            return 0x10;
        case sms::asMESSAGEFORMAT_DATA:
        case sms::asMESSAGEFORMAT_DATA_UDH:
            return 0xF5;
        case sms::asMESSAGEFORMAT_UNICODE:
        case sms::asMESSAGEFORMAT_UNICODE_MULTIPART:
            return 0x08;
        case sms::asMESSAGEFORMAT_UNICODE_FLASH:
        case sms::asMESSAGEFORMAT_UNICODE_MULTIPART_FLASH:
            return 0x18;
        default:
            return smppcharset::CodingOf(charSet);
    }
}

bool IsDataFormat(std::int32_t format) {
    return format == sms::asMESSAGEFORMAT_DATA || format == sms::asMESSAGEFORMAT_DATA_UDH;
}

std::string HexOctets(std::u16string_view body) {
    std::string octets(body.size() / 2, '\0');
    for (std::size_t i = 0; i < octets.size(); ++i) {
        octets[i] = static_cast<char>(hex::Value(body[2 * i]) << 4 | hex::Value(body[2 * i + 1]));
    }
    return octets;
}

std::string Ucs2Octets(std::u16string_view body) {
    std::string octets;
    octets.reserve(2 * body.size());
    for (const char16_t c : body) {
        octets.push_back(static_cast<char>(c >> 8));
        octets.push_back(static_cast<char>(c));
    }
    return octets;
}

// An address as it goes out: a leading "+" makes it international.
struct Address {
    std::string digits;
    std::uint8_t ton, npi;
};

Address AddressOf(const std::string& text, std::int32_t ton, std::int32_t npi, std::int32_t defaultTon,
                  std::int32_t defaultNpi) {
    if (text.starts_with('+')) return {text.substr(1), 1, 1};
    return {text, static_cast<std::uint8_t>(ton == CSmsMessageX::kNotSet ? defaultTon : ton),
            static_cast<std::uint8_t>(npi == CSmsMessageX::kNotSet ? defaultNpi : npi)};
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

ResultCode SmppSubmitBuilder::Build(const SmppSettings& settings, const CSmsMessageX& message,
                                    std::vector<std::string>& pdus) {
    if (settings.systemMode == static_cast<std::int32_t>(BindMode::kReceiver))
        return result::SmppReceiverOnly;
    if (!address::IsNumber(message.Recipient)) return result::InvalidRecipient;
    const std::uint8_t coding = CodingOf(message, settings.charSet);
    const bool data = IsDataFormat(message.Format);
    const bool ucs2 = !data && (coding & kUcs2) != 0;
    std::string body = data   ? HexOctets(message.Data)
                       : ucs2 ? Ucs2Octets(message.Data)
                              : smppcharset::Encode(message.Data, settings.charSet);
    std::string callerHeader;
    if (message.Format == sms::asMESSAGEFORMAT_DATA_UDH && !body.empty()) {
        const std::size_t size = std::min<std::size_t>(static_cast<std::uint8_t>(body[0]), body.size() - 1);
        callerHeader = body.substr(1, size);
        body.erase(0, 1 + size);
    }
    std::string portElement;
    if (message.DestinationPort != 0) {
        portElement = {0x05,
                       0x04,
                       static_cast<char>(message.DestinationPort >> 8),
                       static_cast<char>(message.DestinationPort),
                       0,
                       0};
    }
    // Octets of text in one part, with a header of the given octets.
    const auto capacity = [&](std::size_t header) -> std::int32_t {
        const auto h = static_cast<std::int32_t>(header);
        if (data || (coding & kData) != 0) return 140 - h;
        if (ucs2) return (140 - h) / 2 * 2;
        return 160 - static_cast<std::int32_t>(septets::HeaderSeptets(header));
    };
    std::size_t header = callerHeader.size() + portElement.size();
    if (header != 0) ++header;
    std::int32_t room = capacity(header);
    std::int32_t parts = 1;
    if (static_cast<std::int32_t>(body.size()) > room) {
        room = capacity(header + (header == 0 ? 6 : 5));
        if (room < 1) return result::MessageTooLong;
        parts = (static_cast<std::int32_t>(body.size()) + room - 1) / room;
    }
    if (room < 0 || parts > kMostParts) return result::MessageTooLong;
    auto reference = static_cast<std::uint8_t>(clock_->Ticks() % 65535);
    if (parts > 1) {
        if (reference == lastReference_) ++reference;  // two messages of one tick are told apart
        lastReference_ = reference;
    }

    pdus.resize(static_cast<std::size_t>(parts));
    const std::string& senderText = message.Sender.empty() ? settings.sourceAddress : message.Sender;
    const Address source =
        AddressOf(senderText, message.SourceTON, message.SourceNPI, settings.sourceTon, settings.sourceNpi);
    const Address target = AddressOf(message.Recipient, message.DestinationTON, message.DestinationNPI,
                                     settings.destinationTon, settings.destinationNpi);
    pdu_.service_type = message.ServiceType;
    pdu_.source_addr_ton = source.ton;
    pdu_.source_addr_npi = source.npi;
    pdu_.source_addr = source.digits;
    pdu_.dest_addr_ton = target.ton;
    pdu_.dest_addr_npi = target.npi;
    pdu_.destination_addr = target.digits;
    pdu_.esm_class =
        message.ESM == CSmsMessageX::kNotSet ? std::uint8_t{0} : static_cast<std::uint8_t>(message.ESM);
    pdu_.protocol_id =
        message.PID == CSmsMessageX::kNotSet ? std::uint8_t{0} : static_cast<std::uint8_t>(message.PID);
    pdu_.validity_period = SmppValidity(message.ValidityPeriod, settings.relativeValidity, *clock_);
    pdu_.registered_delivery = message.RequestDeliveryStatus ? 1 : 0;
    pdu_.data_coding = coding;
    pdu_.tlvs = message.TlvRecords;
    for (std::int32_t part = 0; part < parts; ++part) {
        std::string elements;
        if (parts > 1) {
            elements = {0x00, 0x03, static_cast<char>(reference), static_cast<char>(parts),
                        static_cast<char>(part + 1)};
        }
        elements += portElement + callerHeader;
        pdu_.short_message.clear();
        if (!elements.empty()) {
            pdu_.esm_class |= kHeaderIndicator;
            pdu_.short_message = static_cast<char>(elements.size()) + elements;
        }
        pdu_.short_message += std::string_view(body).substr(
            std::min(body.size(), static_cast<std::size_t>(part) * static_cast<std::size_t>(room)),
            static_cast<std::size_t>(room));
        pdu_.Encode();
        const auto octets = pdu_.Data();
        pdus[static_cast<std::size_t>(part)].assign(octets.begin(), octets.end());
    }
    return result::Success;
}
