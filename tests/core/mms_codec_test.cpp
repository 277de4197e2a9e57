// The decoder of MMS units, over units as others send them.
#include "Common/Wsp/WspValues.h"
#include "foundation/ErrorTexts.h"
#include "mms/MMSECodec.h"
#include "mms/MmsMessage.h"
#include "mms/MmsNotificationReader.h"
#include "sms/SmsMessagesX.h"
#include "smsdata/SmsDataMmsNotification.h"
#include "support/MmsUnits.h"
#include "support/Octets.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

std::string DumpOfUnit(std::string_view octets) {
    CMMSECodec unit;
    (void)unit.Decode(octets);
    return unit.Dump();
}

TEST(MmsDecoder, ReadsUnitsOfOthers) {
    for (const MmsUnitRow& row : kMmsUnits) {
        const std::string octets = OctetText(row.unit);
        CMMSECodec unit;
        EXPECT_EQ(unit.Decode(octets), result::Success) << row.name;
        EXPECT_EQ(unit.Dump(), row.dump) << row.name;
    }
}

// What is read of a cut unit is what the whole one begins with; only where nothing is missing it counts as
// whole.
TEST(MmsDecoder, TakesWhatIsWholeOfACutUnit) {
    for (const MmsUnitRow& row : kMmsUnits) {
        const std::string octets = OctetText(row.unit);
        const std::string_view full = row.dump;
        const bool hasBody = full.find("Content-Type") != std::string_view::npos;
        std::size_t seen = 0;
        for (std::size_t size = 0; size < octets.size(); ++size) {
            const std::string cut = octets.substr(0, size);  // of its own, so that reading past the end shows
            CMMSECodec unit;
            const ResultCode code = unit.Decode(cut);
            const std::string dump = unit.Dump();
            if (unit.Parts().empty() || unit.Parts().back().type.type != "text/plain") {
                EXPECT_TRUE(full.starts_with(dump)) << row.name << " at " << size << ": " << dump;
            }
            EXPECT_GE(dump.size(), seen) << row.name << " at " << size;
            seen = dump.size();
            if (hasBody && unit.Parts().empty() && !cut.ends_with(OctetText("B3 00"))) {  // an empty body
                EXPECT_EQ(code, result::MmscCorrupt) << row.name << " at " << size;
            }
        }
    }
}

TEST(MmsDecoder, SurvivesEveryChangeOfOneOctet) {
    for (const MmsUnitRow& row : kMmsUnits) {
        const std::string octets = OctetText(row.unit);
        CMMSECodec unit;
        for (std::size_t at = 0; at < octets.size(); ++at) {
            std::string changed = octets;
            for (int value = 0; value < 256; ++value) {
                changed[at] = static_cast<char>(value);
                (void)unit.Decode(changed);
                std::size_t size = 0;
                for (const MmsPart& part : unit.Parts()) size += part.data.size();
                ASSERT_LE(size, changed.size());
            }
        }
    }
}

TEST(MmsDecoder, ReadsValuesInEveryForm) {
    struct Row {
        const char* field;
        const char* dump;
    };
    for (const Row& row : {
             Row{"89 02 80 00", "From: 80\n"},
             Row{"89 01 81", "From: 81\n"},
             Row{"89 1F 80 '1234567890123456789012345678-' 00",
                 "From: 80 \"1234567890123456789012345678-\"\n"},
             Row{"89 21 80 '1234567890123456789012345678901' 00",
                 "From: 80 \"1234567890123456789012345678901\"\n"},
             Row{"89 1F 05 80 'abc' 00", "From: 80 \"abc\"\n"},
             Row{"89 'abc' 00", "From: 80 \"abc\"\n"},
             Row{"89 81 9B80", "From: 81\nX-Mms-Read-Status: 80\n"},
             Row{"89 04 80 'abc'", "From: 80 \"abc\"\n"},             // no zero octet within the length
             Row{"96 06 'Hello' 00", "Subject: \"Hello\"\n"},         // a length and no charset
             Row{"96 0A 'utf-8' 00 'abc' 00", "Subject: \"abc\"\n"},  // the charset by its name
             Row{"96 07 02 03E8 0041 00 42", "Subject: \"\\x00A\\x00B\" charset=1000\n"},
             Row{"96 05 02 03F7 'A' 00", "Subject: \"A\\x00\" charset=1015\n"},
             Row{"96 1F 04 EA 'ab' 00", "Subject: \"ab\" charset=106\n"},
             Row{"96 00", "Subject:\n"},
             Row{"96 80 00", "Subject: \"\\x80\"\n"},
             Row{"85 01 05", "Date: 5\n"},
             Row{"85 87", "Date: 7\n"},
             Row{"85 09 FF0102030405060708", "Date: 18446744073709551615\n"},
             Row{"8E 81", "X-Mms-Message-Size: 1\n"},
             Row{"87 03 80 01 09", "X-Mms-Delivery-Time: 80 9\n"},
             Row{"88 02 81 83", "X-Mms-Expiry: 81 3\n"},
             Row{"8A 'x-own' 00", "X-Mms-Message-Class: \"x-own\"\n"},
             Row{"83 05 81 'abc' 00 9B80", "X-Mms-Content-Location:\nX-Mms-Read-Status: 80\n"},
             Row{"92 02 81 80 9B80", "X-Mms-Response-Status:\nX-Mms-Read-Status: 80\n"},
             Row{"9B80 01 1F 7F FF 9C81", "X-Mms-Read-Status: 80\nX-Mms-Reply-Charging: 81\n"},
         }) {
        CMMSECodec unit;
        const std::string octets = OctetText(std::string("8C85 ") + row.field);
        EXPECT_EQ(unit.Decode(octets), result::Success) << row.field;
        EXPECT_EQ(unit.Dump(), std::string("X-Mms-Message-Type: 85\n") + row.dump) << row.field;
    }
}

// The same parameters by number, by that of version 1.4, and spelled out.
TEST(WspContentType, ReadsItsParametersInEveryForm) {
    struct Row {
        const char* parameters;
        const char* name;
        const char* start;
        const char* boundary;
        std::uint64_t charset;
    };
    for (const Row& row : {
             Row{"81 EA 85 'n' 00 8A '<s>' 00", "n", "<s>", "", 106},
             Row{"81 'UTF-8' 00 97 'n' 00 99 '<s>' 00", "n", "<s>", "", 106},
             Row{"'charset' 00 EA 'name' 00 'n' 00 'start' 00 '<s>' 00", "n", "<s>", "", 106},
             Row{"'Charset' 00 'utf-8' 00 'NAME' 00 22 'n' 22 00 'Start' 00 22 '<s>' 00", "n", "<s>", "",
                 106},
             Row{"'charset' 00 02 03E8", "", "", "", 1000},
             Row{"'charset' 00 'iso-8859-2' 00", "", "", "", 5},
             Row{"'charset' 00 'klingon' 00", "", "", "", 0},
             Row{"81 'shift_jis' 00", "", "", "", 17},
             Row{"86 'f' 00", "f", "", "", 0},
             Row{"98 'f' 00 'boundary' 00 'B' 00", "f", "", "B", 0},
             Row{"'filename' 00 'f' 00", "f", "", "", 0},
             Row{"'filename' 00 'f' 00 'name' 00 'n' 00", "n", "", "", 0},
             Row{"'name' 00 'n' 00 'filename' 00 'f' 00", "n", "", "", 0},
             // What is not known, or has no value that fits, takes nothing of those behind it.
             Row{"'type' 00 'text/x' 00 89 'text/x' 00 'x' 00 00 'name' 00 81 'start' 00 '<s>' 00", "", "<s>",
                 "", 0},
             Row{"80 81 05 'q' 00 85 'name' 00 'n' 00", "n", "", "", 0},
             Row{"FF 01 AA 'name' 00 'n' 00", "n", "", "", 0},
             Row{"02 AABB 'v' 00 'name' 00 'n' 00", "n", "", "", 0},
             Row{"'nam' 00 'x' 00 'names' 00 'y' 00", "", "", "", 0},
             Row{"'name' 00", "", "", "", 0},
             Row{"'name'", "", "", "", 0},
         }) {
        SCOPED_TRACE(row.parameters);
        const std::string value = OctetText(std::string("83 ") + row.parameters);
        const std::string octets = "\x1F" + std::string(1, static_cast<char>(value.size())) + value;
        OctetReader in(octets);
        const wsp::ContentType type = wsp::ReadContentType(in);
        EXPECT_EQ(std::tuple(type.type, type.name, type.start, type.boundary, type.charset),
                  std::tuple("text/plain", row.name, row.start, row.boundary, row.charset));
        EXPECT_TRUE(in.AtEnd());
        EXPECT_FALSE(in.Overrun());
    }
}

TEST(MmsDecoder, TellsDamageAndReadsOn) {
    struct Row {
        const char* unit;
        const char* dump;
    };
    for (const Row& row : {
             Row{"", ""},
             Row{"'Hello'", ""},
             Row{"98 'T' 00 8D90", "X-Mms-Transaction-Id: \"T\"\nX-Mms-MMS-Version: 90\n"},   // no type
             Row{"8C80 98 'T' 00", "X-Mms-Message-Type: 80\nX-Mms-Transaction-Id: \"T\"\n"},  // no body
             Row{"8C82 88 03 80 04 65 9B80", "X-Mms-Message-Type: 82\nX-Mms-Read-Status: 80\n"},
             Row{"8C82 85 'now' 00 9B80", "X-Mms-Message-Type: 82\nX-Mms-Read-Status: 80\n"},
             Row{"8C82 89 00 9B80", "X-Mms-Message-Type: 82\nX-Mms-Read-Status: 80\n"},
             Row{"8C82 00 9B80", "X-Mms-Message-Type: 82\n"},
             Row{"8C82 96 1F FFFFFFFFFF 'a'", "X-Mms-Message-Type: 82\n"},
             // A part that claims more than there is, and one whose headers do.
             Row{"8C84 84A3 02 01 01 83 'a' 01 8F FF FF FF 7F 83",
                 "X-Mms-Message-Type: 84\nContent-Type: \"application/vnd.wap.multipart.mixed\"\n"
                 "Part \"text/plain\" id=\"\" location=\"\" 1 octets\n"},
             Row{"8C84 84A3 02 04 01 83 8E 'ab' 'x' 01 01 83 'y'",
                 "X-Mms-Message-Type: 84\nContent-Type: \"application/vnd.wap.multipart.mixed\"\n"
                 "Part \"text/plain\" id=\"\" location=\"ab\" 1 octets\n"
                 "Part \"text/plain\" id=\"\" location=\"\" 1 octets\n"},
             Row{"8C84 99 80",
                 "X-Mms-Message-Type: 84\nX-Mms-Retrieve-Status: 80\n"},  // fetched, and no body
             Row{"8C84 84A3 03 01 01 83 'a'",                             // two entries missing
                 "X-Mms-Message-Type: 84\nContent-Type: \"application/vnd.wap.multipart.mixed\"\n"
                 "Part \"text/plain\" id=\"\" location=\"\" 1 octets\n"},
         }) {
        CMMSECodec unit;
        EXPECT_EQ(unit.Decode(OctetText(row.unit)), result::MmscCorrupt) << row.unit;
        EXPECT_EQ(DumpOfUnit(OctetText(row.unit)), row.dump) << row.unit;
    }
}

// Nesting is not followed, and neither a count nor the smallest fields and parts cost much.
TEST(MmsDecoder, IsBoundByTheOctetsThereAre) {
    constexpr std::size_t kMost = 131'072;
    CMMSECodec unit;
    EXPECT_EQ(unit.Decode(OctetText("8C84 84A3 8FFFFFFF7F 01 01 83 'a'")), result::MmscCorrupt);
    EXPECT_EQ(unit.Parts().size(), 1U);
    for (const auto& [start, entry, room] :
         {std::tuple{"8C84 84A3 00", "01 00 83", kMost}, std::tuple{"8C85", "9B80", kMost - 1}}) {
        std::string many = OctetText(start);
        const std::string one = OctetText(entry);
        for (std::size_t i = 0; i < room; ++i) many += one;
        EXPECT_EQ(unit.Decode(many), result::Success) << entry;
        EXPECT_EQ(unit.Decode(many + one), result::MmscCorrupt) << entry;
        EXPECT_EQ(std::max(unit.Parts().size(), unit.Fields().size()), kMost) << entry;
    }
}

TEST(MmsMessage, TakesWhatAUnitSays) {
    CMmsMessage message;
    message.EncodedMessage = OctetText(kMmsUnits[1].unit);
    message.CustomSmil = "old";
    EXPECT_EQ(message.Decode(), result::Success);
    EXPECT_EQ(
        std::tuple(message.From, message.Subject, message.TransactionId, message.Class, message.Priority,
                   message.RequestDeliveryReport, message.RequestReadReceipt, message.CustomSmil),
        std::tuple("Zo\xEB", u"\u00DCber", "r7", 0, 2, true, false, ""));
    EXPECT_EQ(message.Recipients[0].Addresses(), std::vector<std::string>{"a@example.org"});
    EXPECT_EQ(message.Recipients[1].Addresses(), std::vector<std::string>{"b@example.org"});
    ASSERT_EQ(message.Slides.size(), 1U);
    ASSERT_EQ(message.Slides[0].parts.size(), 1U);
    EXPECT_EQ(message.Slides[0].parts[0].data, OctetText("FFD8FFE0"));

    message.EncodedMessage = OctetText(kMmsUnits[0].unit);
    EXPECT_EQ(message.Decode(), result::Success);
    EXPECT_EQ(std::tuple(message.From, message.CustomSmil, message.Priority), std::tuple("", "<smil/>", 1));
    EXPECT_EQ(message.Recipients[0].Addresses(), std::vector<std::string>{"+31612345678"});
    EXPECT_TRUE(message.Recipients[1].IsEmpty());
    ASSERT_EQ(message.Slides.size(), 1U);  // the presentation is no part of it
    ASSERT_EQ(message.Slides[0].parts.size(), 1U);
    EXPECT_EQ(message.Slides[0].parts[0].contentLocation, "t.txt");
}

// With its brackets, as those of a message that is built here, whether the unit has them or not.
TEST(MmsMessage, TakesTheIdsOfParts) {
    struct Row {
        const char* header;
        const char* id;
    };
    for (const Row& row : {
             Row{"C0 22 '<a@b>' 00", "<a@b>"},
             Row{"C0 22 'photo.jpg' 00", "<photo.jpg>"},
             Row{"C0 22 'id' 22 00", "<id>"},
             Row{"C0 '<open' 00", "<open>"},
             Row{"C0 'shut>' 00", "<shut>"},
             Row{"C0 22 00", ""},
             Row{"8E 'x' 00", ""},
         }) {
        const std::string headers = OctetText(std::string("9E ") + row.header);
        CMmsMessage message;
        message.EncodedMessage =
            OctetText("8C84 84A3 01") + static_cast<char>(headers.size()) + '\x01' + headers + 'd';
        EXPECT_EQ(message.Decode(), result::Success) << row.header;
        EXPECT_EQ(message.Slides.at(0).parts.at(0).contentId, row.id) << row.header;
    }
}

TEST(MmsMessage, ReadsTextsInTheirCharacterSets) {
    for (const auto& [field, subject] : {
             std::pair{"96 04 84 80 E9 00", u"\u20AC\u00E9"},  // ISO 8859-1 goes by the Windows code page
             std::pair{"96 04 85 B1 00 00", u"\u0105"},
             std::pair{"96 04 88 BF 00 00", u"\u041F"},
             std::pair{"96 06 EA F09F9880 00", u"\U0001F600"},
             std::pair{"96 06 02 03E8 20AC 00", u"\u20AC"},
             std::pair{"96 07 02 03F7 FFFE AC20", u"\u20AC"},
             std::pair{"96 E9 00", u"\u00E9"},  // neither charset nor UTF-8
             std::pair{"96 C3A9 00", u"\u00E9"},
             std::pair{"96 05 EA 'a' FF 'b' 00", u"a\uFFFDb"},
         }) {
        CMmsMessage message;
        message.EncodedMessage = OctetText(std::string("8C85 ") + field);
        EXPECT_EQ(message.Decode(), result::Success) << field;
        EXPECT_EQ(message.Subject, subject) << field;
    }
}

// --- pushes in the store of received messages

class MmsPush : public testing::Test {
  protected:
    std::string TextOf(const std::string& pdu, std::int32_t time) {
        CSmsMessagesX store(clock, 3600, &MmsNotifications());
        CSmsMessageX record;
        record.SetSinglePart();
        for (const char octet : OctetText("01 06 01 BE") + pdu) {
            record.Data.push_back(static_cast<std::uint8_t>(octet));
        }
        record.DestinationPort = 2948;
        record.TimeSecs = time;
        store.Add(record);
        CSmsMessageX message;
        EXPECT_EQ(store.First(message), result::Success);
        EXPECT_EQ(message.Format, sms::asMESSAGEFORMAT_NOTIFICATION_MMS);
        return {message.Data.begin(), message.Data.end()};
    }

    VirtualClock clock;
};

TEST_F(MmsPush, ReadsAsItsText) {
    struct Row {
        std::string pdu;
        std::int32_t time;
        const char* text;
    };
    for (const Row& row : {
             Row{OctetText(kMmsUnits[2].unit), 1'600'000'000,
                 "M-NOTIFICATION-IND URL=http://mmsc/n1 ID=n1 FROM=+31612345678 SIZE=30000 "
                 "EXPIRATION=1600259200"},
             Row{OctetText(kMmsUnits[3].unit), 0,  // no time of its own
                 "M-NOTIFICATION-IND URL=http://x ID=n2 FROM= SIZE=5 EXPIRATION=1700003600"},
             Row{OctetText("8C82 98 'n' 00 8D90 8E 01 02 88 06 80 04 6553F100 83 'u' 00"), 5,
                 "M-NOTIFICATION-IND URL=u ID=n FROM= SIZE=2 EXPIRATION=1700000000"},
             Row{OctetText(kMmsUnits[6].unit), 5,
                 "M-DELIVERY-IND ID=MSG-1 TO=+31600000001 DATE=1700000000 STATUS=81"},
             Row{OctetText(kMmsUnits[7].unit), 5, "WAP/WSP message"},  // another type
             Row{OctetText(kMmsUnits[2].unit).substr(0, 30), 5, "WAP/WSP message"},
         }) {
        EXPECT_EQ(TextOf(row.pdu, row.time), row.text);
    }
}

// What the content builder sends, the received-message store reads.
TEST_F(MmsPush, OfTheContentBuilderIsRead) {
    for (const std::string from : {"+31600000001/TYPE=PLMN", "someone.with.a.long.name@example.org"}) {
        CSmsDataMmsNotification content(clock);
        content.From = from;
        content.ContentLocation = "http://mmsc/1";
        content.MessageSize = 1000;
        content.TransactionId = "t";
        content.Encode();
        const std::string octets = OctetText(content.EncodedMessage);
        EXPECT_EQ(TextOf(octets.substr(octets.find("\x8C\x82")), 1),
                  "M-NOTIFICATION-IND URL=http://mmsc/1 ID=t FROM=" + from.substr(0, from.find('/')) +
                      " SIZE=1000 EXPIRATION=1700086400");
    }
}

}  // namespace
