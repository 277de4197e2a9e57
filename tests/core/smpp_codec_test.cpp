// SMPP PDUs octet by octet, the optional parameters, and dumps.
#include "Common/SmppPdu/SmppPdus.h"
#include "Common/SmppPdu/TLVTags.h"
#include "foundation/ErrorTexts.h"
#include "smpp/SmppCharSet.h"
#include "smpp/SmppSubmit.h"
#include "support/Octets.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

TEST(SmppPdu, HeadersEncodeAsTheStandardHasThem) {
    CSmppEnquireLink link;
    link.sequence_number = 1;
    link.Encode();
    EXPECT_EQ(HexOf(link.Data()), "00000010000000150000000000000001");
    CSmppGenericNack nack;  // reset before its header is written: status and sequence are lost on purpose
    nack.sequence_number = 7;
    nack.command_status = 3;
    nack.Encode();
    EXPECT_EQ(HexOf(nack.Data()), "00000010800000000000000000000000");
}

// SMPP 3.4 section 3.2.3 gives this bind_transmitter as its worked example.
TEST(SmppPdu, TheStandardsBindIsReadAndWritten) {
    const char* text =
        "0000002F 00000002 00000000 00000001 534D50503354455354 00 7365637265743038 00 5355424D495431 00 00 "
        "01 01 00";
    CSmppBindTransmitter bind;
    bind.SetData(FromHex(text));
    bind.Decode();
    EXPECT_EQ(bind.system_id, "SMPP3TEST");
    EXPECT_EQ(bind.password, "secret08");
    EXPECT_EQ(bind.system_type, "SUBMIT1");
    EXPECT_EQ(bind.addr_ton, 1);
    bind.Encode();
    EXPECT_EQ(HexOf(bind.Data()), HexOf(FromHex(text)));
}

TEST(SmppPdu, DeliverSmGivesItsText) {
    struct Row {
        const char* body;
        std::u16string text;
        std::uint32_t reference;
        std::size_t header;
    };
    const std::string head = "00 0101 3131 00 0101 3232 00 ";
    for (const Row& row : {
             Row{"40 00 00 00 00 00 00 08 00 0A 0500032A020100480069", u"Hi", 42, 5},
             Row{"40 00 00 00 00 00 00 00 00 08 0500032A02014869", u"Hi", 42, 5},
             Row{"00 00 00 00 00 00 00 00 00 02 4869", u"Hi", 0, 0},
             Row{"00 00 00 00 00 00 00 08 00 03 004869", u"H\u6900", 0, 0},
             Row{"40 00 00 00 00 00 00 00 00 02 FF41", u"", 0, 1},
             Row{"00 00 00 00 00 00 00 00 00 00 0424 0002 4869", u"Hi", 0, 0},
             Row{"40 00 00 00 00 00 00 00 00 00 0424 0008 0500032A02014869", u"Hi", 42, 5},
             Row{"00 00 00 00 00 00 00 00 00 FF 48", u"H" + std::u16string(254, u'\0'), 0, 0},
         }) {
        CSmppDeliverSm pdu;
        const Octets body = FromHex(head + row.body);
        Octets octets = FromHex("00000000 00000005 00000000 00000007");
        octets.insert(octets.end(), body.begin(), body.end());
        pdu.SetData(octets);
        pdu.Decode();
        EXPECT_EQ(pdu.message, row.text) << row.body;
        EXPECT_EQ(pdu.userDataHeader.OctetCount(), row.header) << row.body;
        EXPECT_EQ(pdu.userDataHeader.Get(CUserDataHeader::Value::kReference), row.reference) << row.body;
        for (std::size_t size = 0; size < octets.size(); ++size) {
            CSmppDeliverSm part;
            part.SetData(std::span(octets).first(size));
            part.Decode();
        }
    }
}

Octets Response(const std::string& tlvs) { return FromHex("00000000 80000004 00000000 00000001 00 " + tlvs); }

TEST(SmppPdu, TlvsAreReadWithTheirHabits) {
    CSmppSubmitSmResp pdu;
    std::string longValue = "1400 012C ";
    for (int i = 0; i < 256; ++i) longValue += "11";
    pdu.SetData(Response(longValue + "0204 0002 0099" + std::string(76, '0')));  // 44 octets are read as tags
    pdu.Decode();
    EXPECT_EQ(pdu.tlvs.Find(0x1400)->text.size(), 256U);
    EXPECT_EQ(pdu.tlvs.Find(0x0204)->wordValue, 0x99);

    pdu.SetData(Response("0204 0002 0001 0205 0000 0427 0001 02"));
    pdu.Decode();
    EXPECT_EQ(pdu.tlvs.size(), 1U);  // a length of 0 ends the list

    std::string payload = "0424 03E8 ";
    for (int i = 0; i < 1000; ++i) payload += "22";
    pdu.SetData(Response(payload + "001E 0003 414200 0304 0001 05 0204 0002 0001 0204 0002 0002"));
    pdu.Decode();
    EXPECT_EQ(pdu.tlvs.Find(0x0424)->text.size(), 1000U);
    EXPECT_EQ(pdu.tlvs.Find(0x001E)->text, u"AB");
    EXPECT_EQ(pdu.tlvs.Find(0x0304)->type, TLVType::kOctet);
    EXPECT_EQ(pdu.tlvs.Find(0x0204)->wordValue, 2);  // the later one replaces
    EXPECT_EQ(NameOfTag(0x0606), "broadcast_area_indentifier");
    EXPECT_EQ(NameOfTag(0x1400), "provider specific");
    EXPECT_EQ(TypeOfTag(0x0602), TLVType::kCOctet);
}

TEST(SmppPdu, TlvsAreWrittenByTheirType) {
    CSmppSubmitSmResp pdu;
    CTLVRecord number{.tag = 0x0204, .type = TLVType::kWord};
    number.SetInteger(0x12345);
    pdu.tlvs.AddOrReplace(number);
    CTLVRecord large{.tag = 0x1401, .type = TLVType::kLong};
    large.SetInteger(0x12345678);
    pdu.tlvs.AddOrReplace(large);
    CTLVRecord small{.tag = 0x0427, .type = TLVType::kByte};
    small.SetInteger(0x1FE);
    pdu.tlvs.AddOrReplace(small);
    pdu.tlvs.AddOrReplace({.tag = 0x001E, .type = TLVType::kCOctet, .text = u"AB"});
    pdu.tlvs.AddOrReplace({.tag = 0x1400, .type = TLVType::kUnicode, .text = u"\u4E2D"});
    pdu.tlvs.AddOrReplace({.tag = 0x0424, .type = TLVType::kOctet, .text = u"\u00FF"});
    pdu.Encode();
    EXPECT_EQ(HexOf(pdu.Data().subspan(17)),
              "020400022345"
              "1401000412345678"
              "04270001FE"
              "001E0003414200"
              "140000024E2D"
              "04240001FF");
}

TEST(SmppPdu, AnOverlongPduIsCutButCounted) {
    CSmppSubmitSmResp pdu;
    pdu.message_id = std::string(70'000, 'x');
    pdu.Encode();
    EXPECT_EQ(pdu.Data().size(), 65'536U);
    EXPECT_EQ(pdu.command_length, 70'017U);
    pdu.SetData(Octets(70'000, 1));
    EXPECT_EQ(pdu.Data().size(), 65'536U);
    pdu.Reset();
    EXPECT_TRUE(pdu.Data().empty());
}

TEST(SmppPdu, DumpsItsFields) {
    CSmppSubmitSm pdu;
    pdu.source_addr = "1234";
    pdu.esm_class = 0x40;
    pdu.short_message = std::string("\x05\x00\x03\x2A\x02\x01Hi", 8);
    CTLVRecord port{.tag = 0x020B, .type = TLVType::kWord};
    port.SetInteger(2948);
    pdu.tlvs.AddOrReplace(port);
    pdu.Encode();
    pdu.SetDumpFlags(255);
    std::string text;
    pdu.Dump(text);
    for (const char* line : {
             "PDU Length             : 0x00000033\n",
             "PDU Type               : SUBMIT_SM\n",
             "PDU Result Code        : ESME_ROK\n",
             "Source Address         : 1234\n",
             "ESM Flag               : 0x40\n",
             "Schedule Delivery Time : \n",
             "Short Message Length   : 8\n",
             "User Data Header Len   : 5\n",
             "User Data Header       : 00 03 2A 02 01 \n",
             "Short Message Data     :\n\n0000  48 69                                             Hi\n",
             "Optional Parameter     : 0x020B (destination_port              ), 2-Byte  Value: 0x0B84\n",
             "\nPDU HEX Dump:\n\n0000  00 00 00 33 00 00 00 04 00 00 00 00 00 00 00 00   ...3............\n",
         }) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
    EXPECT_EQ(StatusName(0x105), "ESME_RINVSRCADDRSUBUNIT");
    EXPECT_EQ(StatusName(0x106), "ESME_RINVSTDADDRSUBUNIR");
    EXPECT_EQ(CommandName(0x99), "UNKNOWN PDU");
}

TEST(TLVRecords, KeepOneRecordATagAndTravelAsText) {
    CTLVRecords records;
    CTLVRecord byte{.tag = 0x20F, .type = TLVType::kByte};
    byte.SetInteger(0x12345);
    EXPECT_EQ(byte.Integer(), 0x45U);
    records.AddOrReplace(byte);
    records.AddOrReplace({.tag = 5, .type = TLVType::kOctet, .text = u"abc"});
    records.AddOrReplace({.tag = 6, .type = TLVType::kUnicode, .text = u"left out"});
    byte.type = TLVType::kLong;
    records.AddOrReplace(byte);
    EXPECT_EQ(records.ToText(), u"527;;3;;74565||5;;5;;abc||");
    CTLVRecords read;
    read.FromText(u"527;;3;;74565||5;;5;;abc||7;;6;;x|| ||||8;;1;;1||");
    ASSERT_EQ(read.size(), 4U);
    EXPECT_EQ(read.Find(527)->Integer(), 74565U);
    EXPECT_EQ(read.Find(7)->text, u"x");
    EXPECT_EQ(read.Find(8), nullptr);
}

// --- from a message to submit_sm

class Submit : public testing::Test {
  protected:
    std::vector<std::unique_ptr<CSmppSubmitSm>> Build() {
        std::vector<std::string> octets;
        code = builder.Build(settings, message, octets);
        std::vector<std::unique_ptr<CSmppSubmitSm>> pdus;
        for (const std::string& one : octets) {
            auto pdu = std::make_unique<CSmppSubmitSm>();
            pdu->SetData({reinterpret_cast<const std::uint8_t*>(one.data()), one.size()});
            pdu->Decode();
            pdus.push_back(std::move(pdu));
        }
        return pdus;
    }
    void SetUp() override {
        message.Recipient = "+31612345678";
        message.Data = u"a";
    }

    VirtualClock clock;
    SmppSubmitBuilder builder{clock};
    SmppSettings settings;
    CSmsMessageX message;
    ResultCode code;
};

TEST_F(Submit, AddressesTakeTheirDefaults) {
    settings.sourceAddress = "1234";
    settings.sourceTon = 3;
    settings.destinationTon = 5;
    auto pdus = Build();
    EXPECT_EQ(pdus[0]->source_addr, "1234");
    EXPECT_EQ(pdus[0]->source_addr_ton, 3);
    EXPECT_EQ(pdus[0]->destination_addr, "31612345678");
    EXPECT_EQ(pdus[0]->dest_addr_ton, 1);  // a plus sign rules over all settings
    EXPECT_EQ(pdus[0]->dest_addr_npi, 1);
    message.Recipient = "31612345678";
    message.DestinationNPI = 8;
    message.Sender = "+32";
    pdus = Build();
    EXPECT_EQ(pdus[0]->dest_addr_ton, 5);
    EXPECT_EQ(pdus[0]->dest_addr_npi, 8);
    EXPECT_EQ(pdus[0]->source_addr, "32");
    EXPECT_EQ(pdus[0]->source_addr_ton, 1);
    message.Recipient = "12x";
    Build();
    EXPECT_EQ(code, 34031);
}

TEST_F(Submit, DataThatIsNoHexadecimalIsRefused) {
    for (const std::int32_t format : {sms::asMESSAGEFORMAT_DATA, sms::asMESSAGEFORMAT_DATA_UDH}) {
        message.Format = format;
        for (const char16_t* body : {u"Hello", u"ABC", u"AB CD", u"ABCG", u"AB\uFF10\uFF11"}) {
            message.Data = body;
            Build();
            EXPECT_EQ(code, 34034);
        }
        message.Data = u"00fF";
        Build();
        EXPECT_EQ(code, 0);
    }
}

TEST_F(Submit, LongMessagesAreSplit) {
    struct Row {
        std::int32_t format;
        std::size_t units;
        std::uint32_t port;
        std::vector<std::size_t> sizes;  // of short_message, header included
    };
    for (const Row& row : {
             Row{0, 160, 0, {160}},
             Row{0, 161, 0, {159, 14}},
             Row{2, 307, 0, {159, 159, 7}},
             Row{22, 70, 0, {140}},
             Row{22, 71, 0, {140, 14}},
             Row{10, 140, 0, {140}},
             Row{10, 141, 0, {140, 13}},
             Row{0, 152, 2948, {159}},
             Row{0, 153, 2948, {158, 19}},
         }) {
        message.Format = row.format;
        message.DestinationPort = row.port;
        message.Data = std::u16string(row.units * (row.format == 10 ? 2 : 1), u'1');
        const auto pdus = Build();
        ASSERT_EQ(pdus.size(), row.sizes.size()) << row.format << " " << row.units;
        for (std::size_t i = 0; i < pdus.size(); ++i) {
            EXPECT_EQ(pdus[i]->short_message.size(), row.sizes[i]) << row.format << " " << row.units;
            EXPECT_EQ(pdus[i]->esm_class, pdus.size() > 1 || row.port != 0 ? 0x40 : 0);
        }
    }
    message.DestinationPort = 0;
    message.Format = 0;
    message.Data = std::u16string(161, u'x');
    const auto pdus = Build();
    EXPECT_EQ(HexOf(FromHex("050003")), HexOf(pdus[1]->short_message.substr(0, 3)));
    EXPECT_EQ(pdus[1]->short_message.substr(4, 2), std::string("\x02\x02"));
}

TEST(SmppPartReferences, AreTheTicksOrTheNextThatTheLast200HaveNot) {
    SmppPartReferences references;
    for (const auto& [tick, reference] :
         {std::pair{300U, 44}, {300U, 45}, {301U, 46}, {401U, 145}, {65'535U, 0}})
        EXPECT_EQ(references.Next(tick), reference);
    std::vector<std::uint8_t> given;
    while (given.size() < 1000) given.push_back(references.Next(600));  // all in one moment
    for (auto at = given.begin() + 200; at != given.end(); ++at) EXPECT_EQ(std::find(at - 200, at, *at), at);
    for (const auto& [between, again] : {std::pair{199, 210}, {200, 10}}) {
        SmppPartReferences fresh;
        EXPECT_EQ(fresh.Next(10), 10);
        for (int i = 0; i < between; ++i) EXPECT_EQ(fresh.Next(11), 11 + i);
        EXPECT_EQ(fresh.Next(256 + 10), again);
    }
}

TEST_F(Submit, ABurstOfSplitMessagesIsToldApart) {
    message.Data = std::u16string(161, u'x');
    std::set<char> references;
    for (int i = 0; i < 200; ++i) {
        const auto pdus = Build();
        ASSERT_EQ(pdus.size(), 2U);
        EXPECT_EQ(pdus[0]->short_message[3], pdus[1]->short_message[3]);
        references.insert(pdus[0]->short_message[3]);
        clock.Sleep(i % 64 == 0 ? 1 : 0);
    }
    EXPECT_EQ(references.size(), 200U);
}

TEST_F(Submit, NoPartEndsWithinACharacterWhileTheNumberOfPartsSuffices) {
    settings.charSet = sms::asSMPPCHARSET_GSM;
    struct Row {
        std::int32_t format;
        std::u16string text;
        std::vector<std::size_t> sizes;  // of short_message, 6 octets of header included
    };
    const auto x = [](std::size_t count) { return std::u16string(count, u'x'); };
    const std::u16string face = u"\U0001F600";
    std::u16string euros;
    for (int i = 0; i < 153; ++i) euros += u'\u20AC';
    for (const Row& row : {
             Row{0, x(152) + u"\u20AC" + x(20), {158, 28}},
             Row{0, x(151) + u"\u20AC" + x(20), {159, 26}},    // it just fits
             Row{0, x(152) + u"\u20AC" + x(152), {159, 159}},  // no room behind the first part
             Row{0, x(152) + u"\u20AC" + x(151) + u"\u20AC", {158, 159, 8}},
             Row{0, euros, {159, 159}},
             Row{0, euros.substr(1), {158, 158}},
             Row{22, x(66) + face + x(10), {138, 30}},
             Row{22, x(65) + face + x(10), {140, 26}},
             Row{22, x(66) + face + x(66), {140, 140}},
             Row{22, x(66) + u"\xDE00" + x(10), {140, 26}},  // no pair
             Row{10, std::u16string(266, u'1') + u"1B" + std::u16string(20, u'1'), {140, 16}},
         }) {
        message.Format = row.format;
        message.Data = row.text;
        std::vector<std::size_t> sizes;
        std::string body;
        for (const auto& pdu : Build()) {
            sizes.push_back(pdu->short_message.size());
            body += pdu->short_message.substr(6);
        }
        EXPECT_EQ(sizes, row.sizes) << row.format << " " << row.text.size();
        EXPECT_EQ(body.size() % (row.format == 22 ? 2 : 1), 0U);
    }
}

TEST_F(Submit, OptionalParametersThatBurstThePduAreRefused) {
    std::vector<std::string> octets;
    ASSERT_EQ(builder.Build(settings, message, octets), 0);
    const std::size_t room = 65'535 - octets[0].size() - 4;
    for (const auto& [size, code] :
         {std::pair{room, 0}, {room + 1, 34033}, {std::size_t{70'000}, 34033}, {std::size_t{1}, 0}}) {
        message.TlvRecords.AddOrReplace(
            {.tag = 0x1400, .type = TLVType::kOctet, .text = std::u16string(size, u'x')});
        EXPECT_EQ(builder.Build(settings, message, octets), code) << size;
    }
}

TEST_F(Submit, AZeroInATextEndsItsField) {
    message.Sender = std::string("12\0\0034", 5);
    message.ServiceType = std::string("A\0B", 3);
    const auto pdus = Build();
    EXPECT_EQ(pdus[0]->service_type, "A");
    EXPECT_EQ(pdus[0]->source_addr, "12");
    EXPECT_EQ(pdus[0]->destination_addr, "31612345678");
    EXPECT_EQ(pdus[0]->short_message, "a");
}

TEST_F(Submit, CodingComesFromFormatOrCharacterSet) {
    struct Row {
        std::int32_t format, charSet;
        std::u16string text;
        std::uint8_t coding;
        const char* octets;
    };
    for (const Row& row : {
             Row{0, 0, u"\u20AC", 0x00, "80"},
             Row{0, 1, u"@\u20AC", 0x00, "001B65"},
             Row{1, 1, u"@\u00E9", 0x10, "40E9"},
             Row{1, 5, u"a\u0416", 0x10, "613F"},
             Row{0, 3, u"\u00E9", 0x03, "E9"},
             Row{0, 5, u"\u0416", 0x06, "B6"},
             Row{0, 6, u"\u05D0", 0x07, "E0"},
             Row{0, 99, u"a", 0x00, "61"},
             Row{20, 1, u"\u4E2D", 0x08, "4E2D"},
             Row{21, 0, u"a", 0x18, "0061"},
             Row{1, 0, u"a", 0x10, "61"},
             Row{10, 0, u"00ff", 0xF5, "00FF"},
             Row{11, 0, u"0605040B8423F0AB", 0xF5, "0605040B8423F0AB"},
         }) {
        message.Format = row.format;
        settings.charSet = row.charSet;
        message.Data = row.text;
        const auto pdus = Build();
        ASSERT_EQ(pdus.size(), 1U);
        EXPECT_EQ(pdus[0]->data_coding, row.coding) << row.format << " " << row.charSet;
        const std::string& sm = pdus[0]->short_message;
        EXPECT_EQ(HexOf(sm), row.octets);
    }
}

TEST_F(Submit, ACodingThatTheMessageSetsGoesByItself) {
    settings.charSet = sms::asSMPPCHARSET_GSM;
    message.Data = u"@\u00E9\u0416";
    for (const auto& [coding, octets] : {std::pair{0x00, "0005"}, {0x03, "40E93F"}, {0x06, "403FB6"}}) {
        message.DCS = coding;
        EXPECT_EQ(HexOf(Build()[0]->short_message), octets);
    }
}

TEST_F(Submit, ValidityIsAbsoluteOrRelative) {
    EXPECT_EQ(SmppValidity(0, false, clock), "");
    EXPECT_EQ(SmppValidity(60, false, clock), "231114231320000+");
    EXPECT_EQ(SmppValidity(60, true, clock), "-300101010000000R");  // the year field of the epoch, less 100
}

TEST(SmppCharSets, TextGoesOutAndComesBackInEverySet) {
    struct Row {
        std::int32_t charSet;
        std::uint8_t coding;
        std::u16string text;
        std::string octets;
        std::u16string back;
    };
    // Octets from the code charts of ISO 8859-5 and 8859-8 and from 3GPP TS 23.038.
    for (const Row& row : {
             Row{sms::asSMPPCHARSET_GSM, 0x00, u"@[\u00e9", std::string("\0\x1B\x3C\x05", 4), u"@[\u00e9"},
             Row{sms::asSMPPCHARSET_CYRILLIC, 0x06, u"\u0401\u0410\u044f\u2116\u00a7\u00ad\u045f a\u05d0",
                 "\xA1\xB0\xEF\xF0\xFD\xAD\xFF a?", u"\u0401\u0410\u044f\u2116\u00a7\u00ad\u045f a?"},
             Row{sms::asSMPPCHARSET_HEBREW, 0x07, u"\u05d0\u05ea\u00d7\u00f7\u2017\u200f\u00a9 a\uffff",
                 "\xE0\xFA\xAA\xBA\xDF\xFE\xA9 a?", u"\u05d0\u05ea\u00d7\u00f7\u2017\u200f\u00a9 a?"},
         }) {
        EXPECT_EQ(smppcharset::CodingOf(row.charSet), row.coding);
        EXPECT_EQ(smppcharset::KindOf(row.coding), smppcharset::Coding::kText);
        EXPECT_EQ(smppcharset::Encode(row.text, row.coding, row.charSet), row.octets);
        std::u16string octets;
        for (const char octet : row.octets) octets.push_back(static_cast<std::uint8_t>(octet));
        EXPECT_EQ(smppcharset::Decode(octets, row.coding, row.charSet), row.back);
    }
    EXPECT_EQ(smppcharset::Decode(u"\u00a1\u00fb", 0x07, 0), u"??");  // unassigned in Hebrew
    EXPECT_EQ(smppcharset::Decode(u"\u00e9", 0x03, sms::asSMPPCHARSET_GSM),
              u"\u00e9");  // Latin-1 whatever is set
    EXPECT_EQ(smppcharset::KindOf(0xF5), smppcharset::Coding::kData);
    EXPECT_EQ(smppcharset::KindOf(0x04), smppcharset::Coding::kData);
    EXPECT_EQ(smppcharset::KindOf(0x18), smppcharset::Coding::kUcs2);
}

}  // namespace
