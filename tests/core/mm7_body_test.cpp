// Messages encoded as MM7 has them.
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "mms/MmsMessage.h"
#include "mms/MmsVersions.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

const char* const kSchema = "http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/REL-5-MM7-1-2";

struct Message {
    Message() {
        message.Protocol = mms::asMMS_PROTOCOL_MM7;
        EXPECT_EQ(message.AddRecipient("+31612345678", 0), result::Success);
        Add({"image/jpeg", "<a.jpg>", "a.jpg", "", "JPEG"});
    }
    void Add(CMmsMessagePart part) { message.AddSlide({0, 5, {std::move(part)}}); }

    // What is encoded, the boundaries and the transaction id by name.
    std::string Encoded() {
        EXPECT_EQ(message.Encode(), result::Success);
        std::string text = message.EncodedMessage;
        ReplaceAll(text, Between(message.Boundary, "boundary=\"", "\""), "OUTER");
        ReplaceAll(text, Between(text, "type=\"application/smil\"; boundary=\"", "\""), "INNER");
        ReplaceAll(text, message.TransactionId, "ID");
        return text;
    }
    std::string Envelope() { return Between(Encoded(), "?>\r\n", "\r\n--OUTER"); }

    static std::string Between(const std::string& text, std::string_view from, std::string_view to) {
        const std::size_t begin = text.find(from);
        if (begin == std::string::npos) return {};
        const std::size_t start = begin + from.size();
        return text.substr(start, text.find(to, start) - start);
    }

    VirtualClock clock{1'700'000'000};
    CMmsMessage message{clock};
};

TEST(Mm7Body, TheWholeBody) {
    Message m;
    m.message.SetFrom("+31600000001");
    m.message.Settings = {.vaspId = "vasp", .vasId = "vas", .serviceCode = "gold"};
    m.message.Subject = u"A <b> & \u20AC";
    m.message.ValidityPeriod = 1440;
    m.message.Class = mms::asMMS_CLASS_ADVERTISEMENT;
    m.message.Priority = mms::asMMS_PRIORITY_HIGH;
    m.message.RequestDeliveryReport = true;
    EXPECT_EQ(m.message.AddRecipient("eve@example.org", 0), 0);
    EXPECT_EQ(m.message.AddRecipient("10.0.0.1", 0), 0);
    EXPECT_EQ(m.message.AddRecipient("10.0.0.2", 1), 0);
    EXPECT_EQ(m.message.AddRecipient("bob@example.org", 2), 0);
    m.message.CustomSmil = "<smil/>";
    m.Add({"text/plain", "<t.txt>", "t.txt", "", std::string("T\xC3\xA9\0", 4), 65001});
    const std::string schema = kSchema;
    EXPECT_EQ(
        m.Encoded(),
        "--OUTER\r\nContent-Type: text/xml; charset=utf-8\r\nContent-ID: <mm7_msg>\r\n\r\n"
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
        "<env:Envelope xmlns:env=\"http://schemas.xmlsoap.org/soap/envelope/\">\r\n"
        "<env:Header>\r\n<TransactionID xmlns=\"" +
            schema +
            "\" env:mustUnderstand=\"1\" >ID</TransactionID>\r\n</env:Header>\r\n<env:Body>\r\n"
            "<SubmitReq xmlns=\"" +
            schema +
            "\" >\r\n<MM7Version>5.2.0</MM7Version>\r\n<SenderIdentification>\r\n<VASPID>vasp</VASPID>\r\n"
            "<VASID>vas</VASID>\r\n<SenderAddress><Number>+31600000001</Number>\r\n</SenderAddress>"
            "</SenderIdentification>\r\n<Recipients>\r\n<To>\r\n<Number>+31612345678</Number>\r\n"
            "<RFC2822Address>eve@example.org</RFC2822Address>\r\n</To>\r\n<Cc>\r\n</Cc>\r\n<Bcc>\r\n"
            "<RFC2822Address>bob@example.org</RFC2822Address>\r\n</Bcc>\r\n</Recipients>\r\n"
            "<ServiceCode>gold</ServiceCode>\r\n<ExpiryDate>2023-11-15T22:13:20Z</ExpiryDate>\r\n"
            "<MessageClass>Informational</MessageClass>\r\n<DeliveryReport>true</DeliveryReport>\r\n"
            "<ReadReply>false</ReadReply>\r\n<Priority>High</Priority>\r\n"
            "<Subject>A &lt;b&gt; &amp; \xE2\x82\xAC</Subject>\r\n<Content href=\"cid:mms_cid\" />\r\n"
            "</SubmitReq>\r\n</env:Body>\r\n</env:Envelope>\r\n"
            "--OUTER\r\nContent-Type: multipart/related; start=\"<ID.smil>\"; type=\"application/smil\"; "
            "boundary=\"INNER\"\r\nContent-ID: <mms_cid>\r\n\r\n"
            "--INNER\r\nContent-Type: application/smil\r\nContent-ID: <ID.smil>\r\n"
            "Content-Location: ID.smil\r\nContent-Transfer-Encoding: binary\r\n\r\n<smil/>\r\n"
            "--INNER\r\nContent-Type: image/jpeg\r\nContent-ID: <a.jpg>\r\nContent-Location: a.jpg\r\n"
            "Content-Transfer-Encoding: binary\r\n\r\nJPEG\r\n"
            "--INNER\r\nContent-Type: text/plain; charset=\"utf-8\"\r\nContent-ID: <t.txt>\r\n"
            "Content-Location: t.txt\r\nContent-Transfer-Encoding: binary\r\n\r\nT\xC3\xA9" +
            std::string(1, '\0') + "\r\n--INNER--\r\n--OUTER--\r\n");
    EXPECT_THAT(m.message.Boundary,
                testing::MatchesRegex("SOAPAction: \"\"\r\nContent-Type: multipart/related; boundary=\""
                                      "---mime-boundary-[0-9A-F]{8}\\.[0-9A-F]{8}---\"; type=\"text/xml\"; "
                                      "start=\"<mm7_msg>\""));
}

TEST(Mm7Body, TheEnvelopeByTheMessage) {
    struct Row {
        const char* name;
        void (*set)(CMmsMessage& message);
        const char* has;
        const char* lacks;
    };
    for (const Row& row : {
             Row{"nothing of a sender", [](CMmsMessage&) {}, "</MM7Version>\r\n<Recipients>", "Sender"},
             Row{"an id alone", [](CMmsMessage& m) { m.Settings.vasId = "v"; },
                 "<SenderIdentification>\r\n<VASID>v</VASID>\r\n</SenderIdentification>", "SenderAddress"},
             Row{"raw sender", [](CMmsMessage& m) { m.SetFrom("NOTAG:<X a=\"1\">&amp;\r\n</X>"); },
                 "<SenderAddress><X a=\"1\">&amp;  </X></SenderAddress></SenderIdentification>\r\n",
                 "VASPID"},
             Row{"raw sender with what XML cannot hold",
                 [](CMmsMessage& m) { m.SetFrom(std::string("NOTAG:a\0b\1c\td", 13)); },
                 "<SenderAddress>a b c\td</SenderAddress>", "\1"},
             Row{"an internet address", [](CMmsMessage& m) { m.SetFrom("10.0.0.1"); },
                 "<ShortCode>10.0.0.1/TYPE=IPv4</ShortCode>", "Number>10"},
             Row{"mail sender", [](CMmsMessage& m) { m.SetFrom("eve@example.org"); },
                 "<SenderAddress><RFC2822Address>eve@example.org</RFC2822Address>\r\n</SenderAddress>",
                 "Number>+3160"},
             Row{"short code", [](CMmsMessage& m) { m.SetFrom("A&B"); },
                 "<SenderAddress><ShortCode>A&amp;B</ShortCode>\r\n</SenderAddress>", "RFC"},
             Row{"a number as a decoded message has it", [](CMmsMessage& m) { m.From = "1234"; },
                 "<Number>1234</Number>", "ShortCode"},
             Row{"Bcc alone",
                 [](CMmsMessage& m) {
                     m.ClearRecipients();
                     (void)m.AddRecipient("1234567", 2);
                 },
                 "<Recipients>\r\n<Bcc>\r\n<Number>1234567</Number>\r\n</Bcc>\r\n</Recipients>", "<To>"},
             Row{"class 0", [](CMmsMessage& m) { m.Class = 0; }, "<MessageClass>Personal</MessageClass>",
                 "ExpiryDate"},
             Row{"class 2", [](CMmsMessage& m) { m.Class = 2; }, "<MessageClass>Advertisement</MessageClass>",
                 "ServiceCode"},
             Row{"class 3", [](CMmsMessage& m) { m.Class = 3; }, "<MessageClass>Auto</MessageClass>",
                 "Personal"},
             Row{"class 4", [](CMmsMessage& m) { m.Class = 4; }, "</Recipients>\r\n<DeliveryReport>false<",
                 "MessageClass"},
             Row{"class -1", [](CMmsMessage& m) { m.Class = -1; }, "</Recipients>\r\n<DeliveryReport>false<",
                 "MessageClass"},
             Row{"priority 0", [](CMmsMessage& m) { m.Priority = 0; }, "<Priority>Low</Priority>", "Normal"},
             Row{"priority 7", [](CMmsMessage& m) { m.Priority = 7; }, "<Priority>Normal</Priority>", "Low"},
             Row{"read reply", [](CMmsMessage& m) { m.RequestReadReceipt = true; },
                 "<DeliveryReport>false</DeliveryReport>\r\n<ReadReply>true</ReadReply>", "ReadReply>false"},
             Row{"no subject", [](CMmsMessage&) {}, "<Subject></Subject>\r\n<Content href", "Subject />"},
             Row{"what XML cannot hold",
                 [](CMmsMessage& m) {
                     m.Subject =
                         u"a\r\nb\1c\xFFFE\xFFFF\xD800"
                         "d";
                 },
                 "<Subject>a  b c\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"
                 "d</Subject>",
                 "\1"},
             Row{"texts of the settings",
                 [](CMmsMessage& m) { m.Settings.vaspId = m.Settings.serviceCode = "a<\r\n>"; },
                 "<VASPID>a&lt;  &gt;</VASPID>", "<ServiceCode>a<"},
             Row{"version and schema",
                 [](CMmsMessage& m) {
                     m.Settings.version = mms::asMMS_VERSION_6_8_0;
                     m.Settings.schema = mms::asMMS_SCHEMA_REL6_MM7_1_4;
                 },
                 "/REL-6-MM7-1-4\" >\r\n<MM7Version>6.8.0<", "REL-5"},
             Row{"a period before time began", [](CMmsMessage& m) { m.ValidityPeriod = INT32_MIN; },
                 "<ExpiryDate>1970-01-01T00:00:01Z</ExpiryDate>", "n/a"},
         }) {
        SCOPED_TRACE(row.name);
        Message m;
        row.set(m.message);
        const std::string envelope = m.Envelope();
        EXPECT_THAT(envelope, testing::HasSubstr(row.has));
        EXPECT_THAT(envelope, testing::Not(testing::HasSubstr(row.lacks)));
    }
}

TEST(Mm7Body, Schemas) {
    for (const auto& [number, end] :
         std::vector<std::pair<std::int32_t, std::string>>{{0, "/REL-5-MM7-1-0"},
                                                           {5, "/REL-5-MM7-1-5"},
                                                           {6, "/REL-6-MM7-1-0"},
                                                           {10, "/REL-6-MM7-1-4"},
                                                           {11, "/REL-5-MM7-1-2"},
                                                           {-1, "/REL-5-MM7-1-2"}}) {
        EXPECT_TRUE(mms::SchemaNamespace(number).ends_with(end)) << mms::SchemaNamespace(number);
    }
}

TEST(Mm7Body, PartsOfOtherKinds) {
    Message m;
    m.message.CustomSmil = "<smil/>";
    m.Add({"", "<none>", "none", "", "x"});
    m.Add({"application/vnd.oma.drm.message", "<d.dm>", "d.dm", "drm-boundary-1", "x"});
    m.Add({"image/gif", "<a\r\nX-Evil: 1>", "a\r\nX-Evil: 1", "", "x"});
    const std::string body = m.Encoded();
    EXPECT_THAT(body, testing::HasSubstr("Content-Type: application/octet-stream\r\nContent-ID: <none>"));
    EXPECT_THAT(body, testing::HasSubstr(
                          "Content-Type: application/vnd.oma.drm.message; boundary=\"drm-boundary-1\"\r\n"));
    EXPECT_THAT(body, testing::Not(testing::HasSubstr("\nX-Evil")));
}

TEST(Mm7Body, ASubjectThatIsTooLongLeavesWhatWasEncoded) {
    Message m;
    m.message.Subject.assign(40, u'\u20AC');
    EXPECT_EQ(m.message.Encode(), 0);
    const std::string body = m.message.EncodedMessage;
    const std::string boundary = m.message.Boundary;
    m.message.Subject += u'x';
    EXPECT_EQ(m.message.Encode(), 34134);
    EXPECT_EQ(m.message.EncodedMessage, body);
    EXPECT_EQ(m.message.Boundary, boundary);
}

TEST(Mm7Body, AFileIsAlwaysAnMm1Unit) {
    const TemporaryFolder folder;
    Message m;
    EXPECT_EQ(m.message.SaveToFile(folder.File("m.mms"), mms::asMMS_MM1FILE_MSENDREQ), 0);
    EXPECT_TRUE(TemporaryFolder::Read(folder.File("m.mms")).starts_with("\x8C\x80\x98"));
}

}  // namespace
