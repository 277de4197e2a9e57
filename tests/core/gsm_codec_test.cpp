// The GSM alphabet, septets, user data headers and PDUs, octet by octet.
#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/Septets.h"
#include "foundation/Hex.h"
#include "gsm/GsmCodec.h"
#include "gsm/GsmStatusPdu.h"
#include "gsm/PDUDecode.h"
#include "support/Octets.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using Codes = Octets;

Codes Encode(std::u16string_view text) {
    Codes codes(text.size() * 2);
    codes.resize(CGsmAlphabet::Encode(text, codes.data()));
    return codes;
}

std::u16string Decode(const Codes& codes) {
    std::u16string text(codes.size(), u'\0');
    text.resize(CGsmAlphabet::Decode(codes, text.data()));
    return text;
}

TEST(GsmAlphabet, EncodesWithItsPeculiarities) {
    struct Row {
        std::u16string text;
        Codes codes;
    };
    for (const Row& row : {
             Row{u"a[b", {0x61, 0x1B, 0x3C, 0x62}},
             Row{u"\u00E9", {0x05}},
             Row{u"x\u00EAy", {0x78, 0x79}},  // no code: dropped
             Row{u"?", {0x3F}},
             Row{u"\u03C0\u03A0", {0x16, 0x16}},
             Row{u"\u20AC", {0x1B, 0x65}},
             Row{u"\x80", {0x1B, 0x65}},
             Row{u"^{}\\~]|",
                 {0x1B, 0x14, 0x1B, 0x28, 0x1B, 0x29, 0x1B, 0x2F, 0x1B, 0x3D, 0x1B, 0x3E, 0x1B, 0x40}},
             Row{u"@\u0394_\u03A6\u0393\u039B\u03A9\u03A8\u03A3\u0398\u039E",
                 {0x00, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x17, 0x18, 0x19, 0x1A}},
             Row{u"\u4E2D\uFFFF", {}},
             Row{u"\n\r\u00A1\u00BF\u00E0", {0x0A, 0x0D, 0x40, 0x60, 0x7F}},
             Row{std::u16string(1, u'\0'), {}},
         }) {
        EXPECT_EQ(Encode(row.text), row.codes);
    }
}

TEST(GsmAlphabet, CodesEveryCharacterAtEveryPlaceOfAText) {
    for (const auto& [character, codes] : {std::pair<char16_t, Codes>{u'@', {0x00}},
                                           {u'\u039E', {0x1A}},
                                           {u'\u20AC', {0x1B, 0x65}},
                                           {u'|', {0x1B, 0x40}},
                                           {u'\u4E2D', {}}}) {
        for (std::size_t size = 1; size <= 20; ++size) {
            for (std::size_t at = 0; at < size; ++at) {
                std::u16string text(size, u'a');
                text[at] = character;
                Codes expected(size, 0x61);
                expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
                expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(at), codes.begin(),
                                codes.end());
                EXPECT_EQ(Encode(text), expected) << size << " " << at;
                if (codes.empty()) text.erase(at, 1);
                EXPECT_EQ(Decode(expected), text) << size << " " << at;
            }
        }
    }
}

TEST(GsmAlphabet, DecodesWithItsPeculiarities) {
    struct Row {
        Codes codes;
        std::u16string text;
    };
    for (const Row& row : {
             Row{{0x1B, 0x41}, u""},
             Row{{0x1B, 0x1B, 0x3C}, u"["},
             Row{{0x1B, 0x0A, 0x0A}, u"\n\n"},
             Row{{0x16, 0x1B}, u"\u03A0"},
             Row{{0x1B, 0x65, 0x65}, u"\u20ACe"},
             Row{{0x00, 0x24, 0x02, 0x11}, u"@\u00A4$_"},
         }) {
        EXPECT_EQ(Decode(row.codes), row.text);
    }
    for (int code = 0; code < 128; ++code) {  // every code but the escape comes back
        if (code == 0x1B) continue;
        const Codes one{static_cast<std::uint8_t>(code)};
        EXPECT_EQ(Encode(Decode(one)), one) << code;
    }
}

TEST(Septets, PackTheWorkedExamples) {
    struct Row {
        std::u16string text;
        std::size_t header;
        const char* octets;
    };
    for (const Row& row : {
             Row{u"hellohello", 0, "E8329BFD4697D9EC37"}, Row{u"1234567", 0, "31D98C56B3DD00"},
             Row{u"12345678", 0, "31D98C56B3DD70"}, Row{u"", 0, ""}, Row{u"", 6, ""},
             Row{u"a", 6, "C2"},    // 1 fill bit
             Row{u"a", 7, "61"},    // none
             Row{u"a", 1, "4018"},  // 6
             Row{u"a", 2, "200C"},  // 5
             Row{u"a", 3, "1006"},  // 4
             Row{u"a", 4, "0803"},  // 3
             Row{u"a", 5, "8401"},  // 2
         }) {
        const Codes codes = Encode(row.text);
        Codes octets(codes.size() + 1);
        octets.resize(septets::Pack(codes, row.header, octets.data()));
        EXPECT_EQ(HexOf(octets), row.octets) << row.header;
    }
}

TEST(Septets, UnpackWhatWasPackedBehindEveryHeader) {
    for (std::size_t header = 0; header <= 14; ++header) {
        EXPECT_EQ((header * 8 + septets::FillBits(header)) % 7, 0U);
        EXPECT_EQ(septets::HeaderSeptets(header), (header * 8 + septets::FillBits(header)) / 7);
        for (std::size_t size = 1; size <= 20; ++size) {
            Codes codes(size);
            for (std::size_t i = 0; i < size; ++i) codes[i] = static_cast<std::uint8_t>((i * 37 + 1) & 0x7F);
            Codes octets(size + 1);
            octets.resize(septets::Pack(codes, header, octets.data()));
            Codes back(size + 8);
            back.resize(septets::Unpack(octets, header, size, back.data()));
            EXPECT_EQ(back, codes) << header << " " << size;
        }
    }
}

TEST(UserDataHeader, ReadsWhatItKnowsAndKeepsItsHabits) {
    using Value = CUserDataHeader::Value;
    struct Row {
        const char* octets;
        std::array<std::uint32_t, 7>
            values;  // ports 8 (source, destination), ports 16, reference, sequence, total
    };
    for (const Row& row : {
             Row{"00032A0302", {0, 0, 0, 0, 42, 2, 3}},
             Row{"080412340301", {0, 0, 0, 0, 0x34, 1, 3}},
             Row{"05040B8423F0", {0, 0, 9200, 2948, 0, 0, 0}},
             Row{"050400010002050400030004", {0, 0, 6, 4, 0, 0, 0}},
             Row{"0402F5F4", {0xF4, 0xF5, 0, 0, 0, 0, 0}},
             Row{"0A0300 03110201", {0, 0, 0, 0, 17, 1, 2}},  // an unknown element is not skipped
             Row{"000201020000032A0302", {0, 0, 0, 0, 42, 2, 3}},
             Row{"0003", {0, 0, 0, 0, 0, 0, 0}},
             Row{"00032A", {0, 0, 0, 0, 42, 0, 0}},
             Row{"00", {0, 0, 0, 0, 0, 0, 0}},
             Row{"", {0, 0, 0, 0, 0, 0, 0}},
         }) {
        std::string text = row.octets;
        std::erase(text, ' ');
        CUserDataHeader header;
        for (const std::uint8_t octet : FromHex(text)) header.AddOctet(octet);
        for (std::uint32_t i = 0; i < 7; ++i) {
            EXPECT_EQ(header.Get(static_cast<Value>(i + 1)), row.values[i]) << text << " " << i;
        }
        EXPECT_EQ(header.Get(static_cast<Value>(0)), 0U);
        EXPECT_EQ(header.Get(static_cast<Value>(8)), 0U);
        EXPECT_EQ(header.HasHeader(), !text.empty());
    }
    CUserDataHeader full;
    for (int i = 0; i < 300; ++i) full.AddOctet(0xFF);
    EXPECT_EQ(full.OctetCount(), 256U);
}

// --- SMS-SUBMIT

struct SubmitRow {
    const char* name;
    GsmSubmit submit;
    std::int32_t code;
    const char* pdus;
};

TEST(GsmCodec, EncodesSinglePdus) {
    for (const SubmitRow& row : {
             SubmitRow{"text",
                       {"", "+31612345678", u"hellohello"},
                       0,
                       "0001000B911316325476F800000AE8329BFD4697D9EC37;"},
             SubmitRow{"flash, report",
                       {"", "+31612345678", u"a", 1, 0, true},
                       0,
                       "0021000B911316325476F800100161;"},
             SubmitRow{"service centre, validity",
                       {"+31653131313", "S1234", u"a", 0, 1440},
                       0,
                       "07911356131313F3110004C121430000A70161;"},
             SubmitRow{"no prefix is international", {"", "0612", u"a"}, 0, "00010004916021000001 61;"},
             SubmitRow{"national", {"", "N123", u"a"}, 0, "00010003A121F300000161;"},
             SubmitRow{"unicode", {"", "U123", u"\u4E2D\u6587", 20}, 0, "000100038121F30008044E2D6587;"},
             SubmitRow{"unicode flash has no header left",
                       {"", "U123", u"\u4E2D", 21},
                       0,
                       "000100038121F30018024E2D;"},
             SubmitRow{"data", {"", "+123", u"00fF", 10}, 0, "000100039121F300F50200FF;"},
             SubmitRow{"no data", {"", "+123", u"", 10}, 0, "000100039121F300F500;"},
             SubmitRow{"odd digits", {"", "+123", u"00fF0", 10}, 34034, ""},
             SubmitRow{"blanks", {"", "+123", u"00 FF ", 10}, 34034, ""},
             SubmitRow{"no digits", {"", "+123", u"Hell", 11}, 34034, ""},
             SubmitRow{"digits of another script", {"", "+123", u"\uFF10\u0130", 10}, 34034, ""},
             SubmitRow{"the recipient goes first", {"", "12", u"x", 10}, 34031, ""},
             SubmitRow{"data with header",
                       {"", "+123", u"0605040B8423F0ABCD", 11},
                       0,
                       "004100039121F300F5090605040B8423F0ABCD;"},
             SubmitRow{
                 "an empty header keeps its flag", {"", "+123", u"00AB", 11}, 0, "004100039121F300F501AB;"},
             SubmitRow{"header longer than the body",
                       {"", "+123", u"FF0102", 11},
                       0,
                       "004100039121F300F503020102;"},
             SubmitRow{
                 "port", {"", "+123", u"a", 0, 0, false, 2948}, 0, "004100039121F30000090605040B84000061;"},
             SubmitRow{"unknown format is text", {"", "+123", u"a", 77}, 0, "000100039121F300000161;"},
             SubmitRow{"empty", {"", "+123", u""}, 0, "000100039121F3000000;"},
             SubmitRow{"recipient empty", {"", "", u"a"}, 34031, ""},
             SubmitRow{"recipient short", {"", "12", u"a"}, 34031, ""},
             SubmitRow{"recipient long", {"", "123456789012345678901", u"a"}, 34031, ""},
             SubmitRow{"recipient 00", {"", "0031", u"a"}, 34031, ""},
             SubmitRow{"recipient letter", {"", "+12a", u"a"}, 34031, ""},
             SubmitRow{"recipient dl", {"", "dl:team", u"a"}, 34031, ""},
             SubmitRow{"service centre bad", {"x", "+123", u"a"}, 34031, ""},
         }) {
        CGsmCodec codec(0);
        std::string expected = row.pdus;
        std::erase(expected, ' ');
        EXPECT_EQ(codec.Encode(row.submit), row.code) << row.name;
        EXPECT_EQ(codec.Text(), expected) << row.name;
        EXPECT_EQ(codec.Reference(), 0U) << row.name;
    }
}

TEST(GsmCodec, SplitsAtTheCapacitiesOfEachAlphabet) {
    struct Row {
        const char* name;
        std::int32_t format;
        std::size_t units;  // characters, or octets for data
        std::uint16_t port;
        std::vector<int> lengths;  // TP-UDL of each part
        std::int32_t code;
    };
    for (const Row& row : {
             Row{"160", 2, 160, 0, {160}, 0},
             Row{"161", 2, 161, 0, {160, 15}, 0},
             Row{"306", 2, 306, 0, {160, 160}, 0},
             Row{"307", 2, 307, 0, {160, 160, 8}, 0},
             Row{"cut", 0, 161, 0, {160}, 0},
             Row{"cut flash", 1, 500, 0, {160}, 0},
             Row{"other formats are cut", 30, 161, 0, {160}, 0},
             Row{"unicode 70", 22, 70, 0, {140}, 0},
             Row{"unicode 71", 22, 71, 0, {140, 14}, 0},
             Row{"unicode cut", 20, 71, 0, {140}, 0},
             Row{"data 140", 10, 140, 0, {140}, 0},
             Row{"data 141", 10, 141, 0, {}, 34033},
             Row{"port 152", 2, 152, 5, {160}, 0},
             Row{"port 153", 2, 153, 5, {160, 21}, 0},
             Row{"port cut leaves room for its header", 0, 160, 5, {160}, 0},
             Row{"unicode port 67", 22, 67, 5, {140, 18}, 0},
             Row{"255 parts", 2, 255 * 153, 0, std::vector<int>(255, 160), 0},
             Row{"256 parts", 2, 255 * 153 + 1, 0, {}, 34033},
         }) {
        CGsmCodec codec;
        const std::u16string body(row.units * (row.format == 10 ? 2 : 1), u'1');
        GsmSubmit submit{"", "+123", body, row.format};
        submit.destinationPort = row.port;
        EXPECT_EQ(codec.Encode(submit), row.code) << row.name;
        std::vector<int> lengths;
        const std::string& text = codec.Text();
        for (std::size_t at = 0; at < text.size(); at = text.find(';', at) + 1) {
            lengths.push_back(hex::Value(text[at + 18]) << 4 | hex::Value(text[at + 19]));
        }
        EXPECT_EQ(lengths, row.lengths) << row.name;
    }
}

TEST(GsmCodec, NumbersThePartsOfAMessageAndCountsMessages) {
    CGsmCodec codec(0);
    const std::u16string body(161, u'a');
    ASSERT_EQ(codec.Encode({"", "+123", body, 2}), 0);
    const std::string& text = codec.Text();
    const std::size_t second = text.find(';') + 1;
    EXPECT_EQ(text.substr(0, 34), "004100039121F30000A0050003010201C2");
    EXPECT_EQ(text.substr(second), "004100039121F300000F050003010202C2E170381C0E8701;");
    ASSERT_EQ(codec.Encode({"", "+123", body, 0}), 0);
    EXPECT_EQ(codec.Reference(), 2U);  // counted although the message was cut
    EXPECT_EQ(codec.Encode({"", "+123", std::u16string(282, u'0'), 10}), 34033);
    EXPECT_EQ(codec.Reference(), 3U);
    ASSERT_EQ(codec.Encode({"", "+123", u"short", 2}), 0);
    EXPECT_EQ(codec.Reference(), 3U);
}

TEST(GsmCodec, EveryObjectStartsItsReferencesElsewhere) {
    std::set<std::uint32_t> starts;
    for (int i = 0; i < 64; ++i) starts.insert(CGsmCodec().Reference() & 0xFF);
    EXPECT_EQ(starts.size(), 64U);
}

TEST(GsmCodec, AHeaderWithoutRoomForDataIsRefused) {
    CGsmCodec codec;
    for (const auto& [length, total, code] :
         {std::tuple{139, 140, 34033}, {134, 200, 34033}, {255, 256, 34033}, {130, 200, 0}}) {
        std::u16string body;
        constexpr std::u16string_view digits = u"0123456789ABCDEF";
        body +=
            {digits[static_cast<std::size_t>(length) >> 4], digits[static_cast<std::size_t>(length) & 15]};
        body += std::u16string(static_cast<std::size_t>(total - 1) * 2, u'1');
        EXPECT_EQ(codec.Encode({"", "+123", body, 11}), code) << length;
    }
}

TEST(GsmCodec, ValidityHasItsSteps) {
    for (const auto& [minutes, octet] : {std::pair{1, 0xFF},
                                         {3, 0xFF},
                                         {4, 0xFF},
                                         {5, 0x00},
                                         {720, 0x8F},
                                         {749, 0x8F},
                                         {750, 0x90},
                                         {1439, 0xA6},
                                         {1440, 0xA7},
                                         {2880, 0xA8},
                                         {10080, 0xAD},
                                         {43199, 0xC3},
                                         {43200, 0xC4},
                                         {604800, 0xFC},
                                         {635039, 0xFE},
                                         {635040, 0x00},
                                         {-1, 0x00},
                                         {INT32_MIN, 0x00},
                                         {INT32_MAX, 0x00}}) {
        EXPECT_EQ(ValidityOctet(minutes), octet) << minutes;
    }
}

// --- SMS-DELIVER and SMS-STATUS-REPORT

TEST(PduDecode, ReadsDeliveredMessages) {
    struct Row {
        const char* name;
        const char* pdu;
        bool deliver;
        const char* originator;
        const char* serviceCentre;
        std::u16string body;
        std::int32_t format;
    };
    for (const Row& row : {
             Row{"numeric originator that is not international",
                 "07917283010010F5040BC87238880900F10000993092516195800AE8329BFD4697D9EC37", true,
                 "27838890001", "27381000015", u"hellohello", 0},
             Row{"international", "07911356131313F3040B911316111111F10000621112406180000161", true,
                 "+31611111111", "+31653131313", u"a", 0},
             Row{"no service centre", "00040B911316111111F10000621112406180000161", true, "+31611111111", "",
                 u"a", 0},
             Row{"alphanumeric", "0004 0AD0 D4F29C3E07 0000 62111240618000 0161", true, "Tests", "", u"a", 0},
             Row{"data", "0004039121F3 0004 62111240618000 0300FF80", true, "+123", "",
                 std::u16string(u"\0\u00FF\u0080", 3), 10},
             Row{"unicode", "0004039121F3 0008 62111240618000 044E2D6587", true, "+123", "", u"\u4E2D\u6587",
                 20},
             Row{"header, 7 bits", "0044039121F3 0000 62111240618000 09 05 0003010202 C242", true, "+123", "",
                 u"aB", 0},
             Row{"class in DCS", "0004039121F3 00F1 62111240618000 0161", true, "+123", "", u"a", 0},
             Row{"reserved alphabet stays undecoded", "0004039121F3 000C 62111240618000 0161", true, "+123",
                 "", u"", 0},
             Row{"lower case", "0004039121f3 0000 62111240618000 0161", true, "+123", "", u"a", 0},
             Row{"cut short reads as zeros", "0004039121F300006211124061800003", true, "+123", "", u"@@@", 0},
             Row{"UDHL beyond the data", "0044039121F3 0000 62111240618000 02 FF", true, "+123", "", u"", 0},
             Row{"submit", "0001000B911316325476F800000161", false, "", "", u"", 0},
             Row{"report", "0006110B911316325476F8621112406191006211124061910000", false, "", "", u"", 0},
             Row{"empty", "", true, "", "", u"", 0},
             Row{"not hexadecimal", "zz!?", true, "", "", u"", 0},
         }) {
        std::string pdu = row.pdu;
        std::erase(pdu, ' ');
        VirtualClock clock;
        CPDUDecode decode(clock);
        EXPECT_EQ(decode.Decode(pdu), row.deliver) << row.name;
        EXPECT_EQ(decode.originator, row.originator) << row.name;
        EXPECT_EQ(decode.serviceCentre, row.serviceCentre) << row.name;
        EXPECT_EQ(decode.body, row.body) << row.name;
        EXPECT_EQ(decode.format, row.format) << row.name;
        for (std::size_t size = 0; size <= pdu.size(); ++size) {  // every truncation is survived
            CPDUDecode part(clock);
            (void)part.Decode(std::string_view(pdu).substr(0, size));
        }
    }
}

TEST(PduDecode, ReadsTheTimeStampAsLocalTime) {
    VirtualClock clock;
    CPDUDecode decode(clock);
    ASSERT_TRUE(decode.Decode("0004039121F30000621112406180000161"));
    EXPECT_EQ(decode.timeText, "11/21/2026 04:16:08 AM");
    EXPECT_EQ(decode.timeSeconds, 1795234568);
    ASSERT_TRUE(decode.Decode("0004039121F30000FFFFFFFFFFFFFF0161"));  // digits that are none carry over
}

TEST(PduDecode, KeepsAnEarlierOriginatorUnderOneThatIsNotInternational) {
    VirtualClock clock;
    CPDUDecode decode(clock);
    ASSERT_TRUE(decode.Decode("0004039121F30000621112406180000161"));
    ASSERT_TRUE(decode.Decode("0004038121F30000621112406180000161"));
    EXPECT_EQ(decode.originator, "+123123");
}

TEST(GsmStatusPdu, ReadsReports) {
    VirtualClock clock;
    CGsmStatusPdu pdu("0006110B911316325476F8621112406191006211124061910046");
    ASSERT_TRUE(pdu.Decode(clock));
    EXPECT_EQ(pdu.messageReference, 0x11);
    EXPECT_EQ(pdu.recipient.digits, "31612345678");
    EXPECT_EQ(pdu.status, 0x46);
    EXPECT_EQ(pdu.report, "11,11/21/2026 04:16:19 AM,70");
    CGsmStatusPdu deliver("0004039121F30000621112406180000161");
    EXPECT_FALSE(deliver.Decode(clock));
    CGsmStatusPdu nothing("");
    EXPECT_FALSE(nothing.Decode(clock));
}

TEST(GsmStatusPdu, MapsEveryStatusOctet) {
    std::map<int, std::vector<int>> classes = {{2, {0x00}},
                                               {1, {0x01, 0x02, 0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x30}},
                                               {5, {0x40, 0x41, 0x43, 0x44, 0x45, 0x49}},
                                               {8, {0x42}},
                                               {3, {0x46}},
                                               {4, {0x47, 0x48}}};
    std::map<int, int> expected;
    for (const auto& [status, octets] : classes) {
        for (const int octet : octets) expected[octet] = status;
    }
    for (int octet = 0; octet < 256; ++octet) {
        EXPECT_EQ(StatusOfOctet(static_cast<std::uint8_t>(octet)),
                  expected.contains(octet) ? expected[octet] : 7)
            << octet;
    }
}

}  // namespace
