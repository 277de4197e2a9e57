#include "gsm/GsmCodec.h"

#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/HeaderElements.h"
#include "Common/GsmPdu/Septets.h"
#include "foundation/Addresses.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/UniqueNumber.h"
#include "sms/MessageFormats.h"
#include "sms/SmsConstants.h"

#include <algorithm>
#include <span>

namespace {

struct PrefixRow {
    char prefix;
    std::uint8_t typeOfAddress;
};
constexpr auto kPrefixes =
    std::to_array<PrefixRow>({{'+', 0x91}, {'U', 0x81}, {'N', 0xA1}, {'S', 0xC1}, {'G', 0xB1}, {'A', 0xE1}});
constexpr std::uint8_t kInternational = 0x91;  // also for a number without a prefix

constexpr std::uint8_t kSubmit = 0x01;
constexpr std::uint8_t kRelativeValidity = 0x10;
constexpr std::uint8_t kStatusReportRequest = 0x20;
constexpr std::uint8_t kHeaderIndicator = 0x40;

constexpr std::int32_t kSeptetsPerMessage = 160;
constexpr std::int32_t kOctetsPerMessage = 140;
constexpr auto kConcatenationOctets = static_cast<std::int32_t>(udh::kConcatenationSize);
constexpr auto kPortOctets = static_cast<std::int32_t>(udh::kPortsSize);

}  // namespace

// The objects of a process get numbers that follow each other; this far apart, their messages stay apart
// long.
std::uint32_t CGsmCodec::FirstReference() {
    constexpr std::uint32_t kApart = 159;
    return UniqueNumber() * kApart;
}

struct CGsmCodec::Plan {
    MessageFormat format{};
    std::u16string_view ucs2;
    std::span<const std::uint8_t> callerHeader;
    std::span<const std::uint8_t> units;
    std::int32_t headerOctets = 0;  // UDHL octet included
    std::int32_t length = 0;        // of the whole body in units, a caller's header included
    std::int32_t unitsPerPart = 0;
    std::int32_t parts = 1;
};

std::uint8_t ValidityOctet(std::int32_t minutes) {
    std::int32_t octet = 0;
    if (minutes < 0 || minutes >= 635040) {
        octet = 0;
    } else if (minutes <= 720) {
        octet = minutes / 5 - 1;  // 1 to 4 minutes become 0xFF, the longest
    } else if (minutes < 1440) {
        octet = 143 + (minutes - 720) / 30;
    } else if (minutes < 43200) {
        octet = minutes / 1440 + 166;
    } else {
        octet = minutes / 10080 + 192;
    }
    return static_cast<std::uint8_t>(octet);
}

ResultCode CGsmCodec::Encode(const GsmSubmit& submit) {
    text_.clear();
    if (!address::IsPduNumber(submit.recipient) ||
        (!submit.smsc.empty() && !address::IsPduNumber(submit.smsc))) {
        return result::InvalidRecipient;
    }
    Plan plan;
    plan.format = FormatOf(submit.format);
    if (!CanHold(plan.format, submit.body)) return result::InvalidFormat;
    ReadBody(submit, plan);
    if (const ResultCode code = DivideIntoParts(plan); code != result::Success) return code;
    text_.reserve(static_cast<std::size_t>(plan.parts) * 2 * (kOctetsPerMessage + 40));
    for (std::int32_t part = 0; part < plan.parts; ++part)
        EncodePart(submit, plan, static_cast<std::size_t>(part));
    return result::Success;
}

void CGsmCodec::ReadBody(const GsmSubmit& submit, Plan& plan) {
    const std::u16string_view body = submit.body;
    switch (plan.format.alphabet) {
        case Alphabet::kUcs2:
            plan.ucs2 = body;
            plan.length = static_cast<std::int32_t>(body.size());
            break;
        case Alphabet::kGsm:
            units_.resize(std::max(units_.size(), body.size() * 2));
            plan.units = {units_.data(), CGsmAlphabet::Encode(body, units_.data())};
            plan.length = static_cast<std::int32_t>(plan.units.size());
            break;
        case Alphabet::kOctets:
            units_.resize(std::max(units_.size(), body.size() / 2));
            plan.units = {units_.data(), hex::Read(body, units_.data())};
            plan.length = static_cast<std::int32_t>(plan.units.size());
            break;
    }
    if (submit.format == sms::asMESSAGEFORMAT_DATA_UDH && !plan.units.empty()) {
        const std::size_t size = std::min<std::size_t>(plan.units[0], plan.units.size() - 1);
        plan.callerHeader = plan.units.subspan(1, size);
        plan.units = plan.units.subspan(1 + size);
        plan.headerOctets = static_cast<std::int32_t>(size) + 1;
    }
    if (submit.destinationPort != 0)
        plan.headerOctets += plan.headerOctets == 0 ? kPortOctets + 1 : kPortOctets;
}

ResultCode CGsmCodec::DivideIntoParts(Plan& plan) {
    const bool gsm = plan.format.alphabet == Alphabet::kGsm;
    const std::int32_t unitSize = plan.format.alphabet == Alphabet::kUcs2 ? 2 : 1;
    const auto capacity = [gsm](std::int32_t header) {
        return gsm ? kSeptetsPerMessage -
                         static_cast<std::int32_t>(septets::HeaderSeptets(static_cast<std::size_t>(header)))
                   : kOctetsPerMessage - header;
    };
    const std::int32_t whole = capacity(plan.headerOctets);
    plan.unitsPerPart = whole / unitSize;
    if (whole >= 0 && static_cast<std::int64_t>(plan.length) * unitSize <= whole) return result::Success;

    const std::int32_t header = plan.headerOctets + kConcatenationOctets + (plan.headerOctets == 0 ? 1 : 0);
    const std::int32_t room = capacity(header);
    if (room < unitSize) return result::MessageTooLong;
    const std::int64_t parts = (static_cast<std::int64_t>(plan.length) * unitSize + room - 1) / room;
    if (parts > 1) ++reference_;
    if (parts > 1 && !plan.format.multipart) {
        // Cut to one part without a word, save for plain data.
        return plan.format.alphabet == Alphabet::kOctets ? result::MessageTooLong : result::Success;
    }
    if (parts > udh::kMostParts) return result::MessageTooLong;
    plan.headerOctets = header;
    plan.unitsPerPart = room / unitSize;
    plan.parts = static_cast<std::int32_t>(parts);
    return result::Success;
}

void CGsmCodec::PutAddress(std::string_view number, bool countDigits) {
    const auto* const row = std::ranges::find(kPrefixes, number.front(), &PrefixRow::prefix);
    const bool prefixed = row != kPrefixes.end();
    const std::string_view digits = number.substr(prefixed ? 1 : 0);
    const std::size_t octets = (digits.size() + 1) / 2;
    Put(static_cast<std::uint8_t>(countDigits ? digits.size() : octets + 1));
    Put(prefixed ? row->typeOfAddress : kInternational);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const auto low = static_cast<std::uint8_t>(digits[i] - '0');
        const auto high = static_cast<std::uint8_t>(i + 1 < digits.size() ? digits[i + 1] - '0' : 0x0F);
        Put(static_cast<std::uint8_t>(high << 4 | low));
    }
}

// The elements behind the UDHL octet's place, in their fixed order: concatenation, the caller's own, port.
void CGsmCodec::PutHeader(const GsmSubmit& submit, const Plan& plan, std::size_t part) {
    if (plan.parts > 1) {
        Put(udh::Concatenation(static_cast<std::uint8_t>(reference_), static_cast<std::uint8_t>(plan.parts),
                               static_cast<std::uint8_t>(part + 1)));
    }
    Put(plan.callerHeader);
    if (submit.destinationPort != 0) Put(udh::Ports(submit.destinationPort, 0));
}

// The data of one part; returns its length as TP-UDL counts it.
std::size_t CGsmCodec::PutUserData(const Plan& plan, std::size_t part, std::size_t headerOctets) {
    const auto perPart = static_cast<std::size_t>(plan.unitsPerPart);
    const auto cut = [&](auto units) {
        const std::size_t from = std::min(part * perPart, units.size());
        return units.subspan(from, std::min(perPart, units.size() - from));
    };
    if (plan.format.alphabet == Alphabet::kUcs2) {
        const auto units = cut(std::span(plan.ucs2));
        std::uint8_t* __restrict out = &pdu_[count_];
        for (std::size_t i = 0; i < units.size(); ++i) {
            out[2 * i] = static_cast<std::uint8_t>(units[i] >> 8);
            out[2 * i + 1] = static_cast<std::uint8_t>(units[i]);
        }
        count_ += units.size() * 2;
        return headerOctets + units.size() * 2;
    }
    const auto units = cut(plan.units);
    if (plan.format.alphabet == Alphabet::kGsm) {
        count_ += septets::Pack(units, headerOctets, &pdu_[count_]);
        return septets::HeaderSeptets(headerOctets) + units.size();
    }
    Put(units);
    return headerOctets + units.size();
}

void CGsmCodec::EncodePart(const GsmSubmit& submit, const Plan& plan, std::size_t part) {
    count_ = 0;
    if (submit.smsc.empty()) {
        Put(0x00);
    } else {
        PutAddress(submit.smsc, false);
    }
    const std::size_t firstOctetAt = count_;
    Put(static_cast<std::uint8_t>(kSubmit | (submit.requestReport ? kStatusReportRequest : 0) |
                                  (submit.validityPeriod != 0 ? kRelativeValidity : 0)));
    Put(0x00);  // TP-MR, assigned by the modem
    PutAddress(submit.recipient, true);
    Put(0x00);  // TP-PID
    Put(plan.format.Dcs());
    if (submit.validityPeriod != 0) Put(ValidityOctet(submit.validityPeriod));
    const std::size_t lengthAt = count_;
    Put(0x00);
    const std::size_t headerAt = count_;
    Put(0x00);
    PutHeader(submit, plan, part);
    std::size_t headerOctets = count_ - headerAt;
    if (headerOctets > 1) {
        pdu_[headerAt] = static_cast<std::uint8_t>(headerOctets - 1);
    } else {
        headerOctets = 0;
        count_ = headerAt;
    }
    // Format 11 keeps the indicator even with an empty header.
    if (headerOctets > 0 || submit.format == sms::asMESSAGEFORMAT_DATA_UDH)
        pdu_[firstOctetAt] |= kHeaderIndicator;
    pdu_[lengthAt] = static_cast<std::uint8_t>(PutUserData(plan, part, headerOctets));
    const std::size_t start = text_.size();
    text_.resize(start + 2 * count_ + 1);
    hex::Write({reinterpret_cast<const char*>(pdu_.data()), count_}, text_.data() + start);
    text_.back() = ';';
}
