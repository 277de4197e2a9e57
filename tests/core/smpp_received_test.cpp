// From the octets of deliver_sm and data_sm to the message that a caller reads.
#include "smpp/SmppReceived.h"
#include "support/Octets.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int32_t kUnset = CSmsMessageX::kNotSet;

template <class Pdu>
CSmsMessageX Received(const char* body, std::int32_t charSet = 0) {
    VirtualClock clock(1'700'000'000);
    Octets octets = FromHex("00000000 00000000 00000000 00000001");
    const Octets rest = FromHex(body);
    octets.insert(octets.end(), rest.begin(), rest.end());
    Pdu pdu;
    pdu.SetData(octets);
    pdu.Decode();
    return SmppReceivedMessage(pdu, charSet, clock);
}

TEST(SmppReceived, AddressesAndNumbersAreTheirFields) {
    const CSmsMessageX message =
        Received<CSmppDeliverSm>("'WAP'00 01 02 '3161'00 01 03 '3162'00 04 7F 00 00 00 00 00 00 00 02 'Hi'");
    EXPECT_EQ(message.ServiceType, "WAP");
    EXPECT_EQ(message.Sender, "+3161");
    EXPECT_EQ(message.Recipient, "+3162");
    EXPECT_EQ(message.SourceTON, 1);
    EXPECT_EQ(message.SourceNPI, 2);
    EXPECT_EQ(message.DestinationTON, 1);
    EXPECT_EQ(message.DestinationNPI, 3);
    EXPECT_EQ(message.ESM, 4);
    EXPECT_EQ(message.PID, 0x7F);
    EXPECT_EQ(message.ReceivedTime, 1'700'000'000);
    EXPECT_EQ(message.TimeSecs, 1'700'000'000);
    EXPECT_EQ(message.Time, "11/14/2023 10:13:20 PM");

    const CSmsMessageX data =
        Received<CSmppDataSm>("'WAP'00 00 02 '3161'00 05 03 'Shop'00 08 01 F5 0424 0002 0AFF");
    EXPECT_EQ(data.Sender, "3161");  // neither is international
    EXPECT_EQ(data.Recipient, "Shop");
    EXPECT_EQ(data.SourceTON, 0);
    EXPECT_EQ(data.DestinationTON, 5);
    EXPECT_EQ(data.ESM, 8);
    EXPECT_EQ(data.PID, kUnset);  // data_sm has none
    EXPECT_EQ(data.DCS, 0xF5);
    EXPECT_EQ(data.Data, u"\x0A\xFF");

    EXPECT_EQ(Received<CSmppDeliverSm>("00 0101'+31'00 0101 00 00").Sender, "+31");
    EXPECT_EQ(Received<CSmppDeliverSm>("00 0101'+31'00 0101 00 00").Recipient, "");
}

TEST(SmppReceived, DataCodingTellsFormatAndText) {
    struct Row {
        const char* codingToText;
        std::int32_t charSet, coding, format;
        std::u16string text;
    };
    for (const Row& row : {
             Row{"00 00 02 '@a'", sms::asSMPPCHARSET_DEFAULT, 0x00, sms::asMESSAGEFORMAT_TEXT, u"@a"},
             Row{"00 00 02 00'a'", sms::asSMPPCHARSET_GSM, 0x00, sms::asMESSAGEFORMAT_TEXT, u"@a"},
             Row{"06 00 01 B6", sms::asSMPPCHARSET_GSM, 0x06, sms::asMESSAGEFORMAT_TEXT, u"\u0416"},
             Row{"08 00 02 0416", sms::asSMPPCHARSET_GSM, 0x08, sms::asMESSAGEFORMAT_UNICODE, u"\u0416"},
             Row{"04 00 02 00B6", sms::asSMPPCHARSET_GSM, 0x04, sms::asMESSAGEFORMAT_DATA,
                 std::u16string(u"\0\u00B6", 2)},
             Row{"F5 00 01 41", sms::asSMPPCHARSET_DEFAULT, 0xF5, sms::asMESSAGEFORMAT_DATA, u"A"},
         }) {
        SCOPED_TRACE(row.codingToText);
        const std::string body =
            std::string("00 0000'1'00 0000'2'00 00 00 00 00 00 00 00 ") + row.codingToText;
        const CSmsMessageX message = Received<CSmppDeliverSm>(body.c_str(), row.charSet);
        EXPECT_EQ(message.DCS, row.coding);
        EXPECT_EQ(message.Format, row.format);
        EXPECT_EQ(message.Data, row.text);
    }
}

TEST(SmppReceived, NumberingAndPortsComeFromHeaderOrOptionalParameters) {
    struct Row {
        const char* name;
        CSmsMessageX message;
        std::uint32_t reference, count, number, sourcePort, destinationPort;
        std::u16string text;
    };
    const std::string deliver = "00 0000'1'00 0000'2'00 ";
    const auto sm = [&deliver](const std::string& rest) {
        return Received<CSmppDeliverSm>((deliver + rest).c_str());
    };
    const auto data = [&deliver](const std::string& rest) {
        return Received<CSmppDataSm>((deliver + rest).c_str());
    };
    const std::string sar = " 020C 0002 1234 020E 0001 03 020F 0001 02";
    for (const Row& row : {
             Row{"single", sm("00 00 00 00 00 00 00 00 00 01 'a'"), 256, 1, 1, 0, 0, u"a"},
             Row{"sar", sm("00 00 00 00 00 00 00 00 00 01 'a'" + sar), 0x1234, 3, 2, 0, 0, u"a"},
             Row{"sar without number", sm("00 00 00 00 00 00 00 00 00 01 'a' 020E 0001 03"), 0, 3, 0, 0, 0,
                 u"a"},
             Row{"number without sar", sm("00 00 00 00 00 00 00 00 00 01 'a' 020F 0001 03"), 256, 1, 1, 0, 0,
                 u"a"},
             Row{"header", sm("40 00 00 00 00 00 00 00 00 0D 0B 00032A0405 05040B8423F0 'a'"), 0x2A, 4, 5,
                 0x23F0, 0x0B84, u"a"},
             Row{"header before sar", sm("40 00 00 00 00 00 00 00 00 07 05 00032A0405 'a'" + sar), 0x2A, 4, 5,
                 0, 0, u"a"},
             Row{"data_sm", data("00 00 00 0424 0001 'a'"), 256, 1, 1, 0, 0, u"a"},
             Row{"data_sm with sar", data("00 00 00 0424 0001 'a'" + sar), 0x1234, 3, 2, 0, 0, u"a"},
             Row{"data_sm with header", data("40 00 00 0424 000D 0B 00032A0405 05040B8423F0 'a'"), 0x2A, 4, 5,
                 0x23F0, 0x0B84, u"a"},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.message.PartReference, row.reference);
        EXPECT_EQ(row.message.PartCount, row.count);
        EXPECT_EQ(row.message.PartNumber, row.number);
        EXPECT_EQ(row.message.SourcePort, row.sourcePort);
        EXPECT_EQ(row.message.DestinationPort, row.destinationPort);
        EXPECT_EQ(row.message.Data, row.text);
    }
    const CSmsMessageX kept = sm("40 00 00 00 00 00 00 00 00 07 05 00032A0405 'a'" + sar);
    EXPECT_EQ(kept.UserDataHeader.OctetCount(), 5U);
    EXPECT_EQ(kept.TlvRecords.size(), 3U);
}

}  // namespace
