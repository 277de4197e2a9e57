// What replies of MMSCs over MM7 say and mean.
#include "mms/Mm7Reply.h"
#include "mms/MmsConstants.h"

#include <gtest/gtest.h>

namespace {

const char* const kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<env:Envelope xmlns:env=\"http://schemas.xmlsoap.org/soap/envelope/\">"
    "<env:Header><TransactionID env:mustUnderstand=\"1\">T1</TransactionID>"
    "<wsa:MessageID>not this</wsa:MessageID></env:Header>";
const char* const kTail = "</env:Envelope>";

std::string InBody(const std::string& body) { return kHead + ("<env:Body>" + body + "</env:Body>") + kTail; }
std::string Submitted(const std::string& status) {
    return InBody("<SubmitRsp><MM7Version>5.3.0</MM7Version>" + status + "</SubmitRsp>");
}

// "code|text|id", and an F in front for a fault.
std::string Said(const std::string& octets, std::int32_t variation = mms::asMMS_MM7VARIATION_3GPP) {
    const Mm7Reply reply = ReadMm7Reply(octets, variation);
    return (reply.isFault ? "F|" : "") + reply.statusCode + "|" + reply.statusText + "|" + reply.messageId;
}

TEST(Mm7Reply, WhatItSays) {
    struct Row {
        const char* name;
        std::string reply;
        const char* said;
    };
    const std::string success =
        "<Status><StatusCode>1000</StatusCode><StatusText>Success</StatusText></Status>"
        "<MessageID>041502073667</MessageID>";
    for (const Row& row : {
             Row{"standard", Submitted(success), "1000|Success|041502073667"},
             Row{"prefixes",
                 "<SOAP-ENV:Envelope><SOAP-ENV:Body><ns1:SubmitRsp><ns1:Status><ns1:StatusCode> 1100\r\n"
                 "</ns1:StatusCode><ns1:StatusText><![CDATA[Partial & <more>]]></ns1:StatusText></ns1:Status>"
                 "<ns1:MessageID>m<!-- "
                 "-->1</ns1:MessageID></ns1:SubmitRsp></SOAP-ENV:Body></SOAP-ENV:Envelope>",
                 "1100|Partial & <more>|m1"},
             Row{"other variation",
                 InBody("<SubmitRsp><Request-Status>1000</Request-Status><Request-Status-Text>Ok"
                        "</Request-Status-Text><Message-ID>m2</Message-ID></SubmitRsp>"),
                 "1000|Ok|m2"},
             Row{"without an envelope", "<SubmitRsp><StatusCode>1000</StatusCode></SubmitRsp>", "1000||"},
             Row{"the first of a name",
                 Submitted("<StatusCode>2002</StatusCode><Details><StatusCode>1000</StatusCode></Details>"),
                 "2002||"},
             Row{"a header that is not the envelope's", Submitted("<Header/><StatusCode>1000</StatusCode>"),
                 "1000||"},
             Row{"elements inside",
                 Submitted("<StatusCode>20<b>1000</b>02</StatusCode><StatusText/><StatusText>x</StatusText>"),
                 "2002||"},
             Row{"several lines",
                 Submitted("<StatusText>a\r\n b&#9;c\x7F"
                           "d</StatusText>"),
                 "|a  b c d|"},
             Row{"refused",
                 InBody(
                     "<RSErrorRsp><Status><StatusCode>4001</StatusCode><StatusText>Who?</StatusText></Status>"
                     "</RSErrorRsp>"),
                 "4001|Who?|"},
             Row{"fault",
                 InBody("<env:Fault><faultcode>env:Client</faultcode><faultstring>Client error</faultstring>"
                        "<detail><RSErrorRsp><Status><StatusCode>4004</StatusCode><StatusText>Invalid"
                        "</StatusText></Status></RSErrorRsp></detail></env:Fault>"),
                 "F|4004|Invalid|"},
             Row{"fault without a status", InBody("<env:Fault><faultstring>Busy</faultstring></env:Fault>"),
                 "F||Busy|"},
             Row{"a fault's text alone", InBody("<faultstring>Busy</faultstring>"), "F||Busy|"},
             Row{"fault in other spelling, under the envelope",
                 kHead + std::string("<env:Fault><FaultString>Busy</FaultString></env:Fault>") + kTail,
                 "F||Busy|"},
             Row{"ISO 8859-1",
                 "<?xml version='1.0' encoding='iso-8859-1'?><a><StatusText>\xE9</StatusText></a>",
                 "|\xC3\xA9|"},
             Row{"a set that is unknown, without letters of its own",
                 "<?xml version='1.0' encoding='GB2312'?><a><StatusCode>1000</StatusCode></a>", "1000||"},
             Row{"a set that is unknown",
                 "<?xml version='1.0' encoding='GB2312'?><a><StatusCode>1000</StatusCode>\xB0\xA1</a>", "||"},
             Row{"blanks before", "\r\n <a><StatusCode>1000</StatusCode></a>", "1000||"},
             Row{"HTML", "<!DOCTYPE html><html><body><p>Welcome<br>StatusCode 1000</body></html>", "||"},
             Row{"text", "1000 OK", "||"},
             Row{"nothing", "", "||"},
             Row{"an entity", Submitted("<StatusCode>&c;1000</StatusCode>"), "||"},
             Row{"too deep",
                 [] {
                     std::string deep;
                     for (int i = 0; i < 10'000; ++i) deep += "<a>";
                     return deep + "<StatusCode>1000</StatusCode>";
                 }(),
                 "||"},
             Row{"multipart",
                 "This is a preamble\r\n--b1  \r\nContent-Type: application/smil\r\n\r\n<smil/>\r\n--b1\r\n"
                 "content-id: <x>\r\nCONTENT-TYPE: text/xml;\r\n charset=utf-8\r\n\r\n" +
                     Submitted(success) + "\r\n--b1--\r\nepilogue",
                 "1000|Success|041502073667"},
             Row{"dashes that are no delimiters",
                 "-- \r\nThe server\r\n\r\n--b\r\nContent-Type: text/xml\r\n\r\n"
                 "<a><StatusCode>1000</StatusCode><StatusText>x--b\r\n--bc\r\n</StatusText></a>\r\n--b--",
                 "1000|x--b --bc|"},
             Row{"a type that goes on in the next line",
                 "--b\r\nContent-Type: text/plain\r\n\r\n<a/>\r\n--b\r\nContent-Type:\r\n text/xml\r\n\r\n" +
                     Submitted(success) + "\r\n--b--",
                 "1000|Success|041502073667"},
             Row{"UTF-16",
                 std::string("\xFF\xFE<\0a\0>\0<\0M\0e\0s\0s\0a\0g\0e\0I\0D\0>\0"
                             "7\0<\0/\0M\0e\0s\0s\0a\0g\0e\0I\0D\0>\0",
                             56),
                 "||7"},
             Row{"multipart without types, and cut", "--b\n\n" + Submitted(success),
                 "1000|Success|041502073667"},
             Row{"multipart without XML", "--b\r\nContent-Type: text/plain\r\n\r\n1000\r\n--b--", "||"},
             Row{"a delimiter alone", "--b", "||"},
             Row{"transfer encodings",
                 "--b\r\nContent-Type: text/xml\r\nContent-Transfer-Encoding: Base64\r\n\r\n"
                 "PGE+PFN0YXR1 \tc0NvZGU+MTAw\r\nMDwvU3RhdHVzQ29kZT48L2E+\r\n--b--",
                 "1000||"},
             Row{"quoted-printable",
                 "--b\r\nContent-Type: text/xml\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n"
                 "<a x=3D'1'><Status=\r\nCode>10=30=\n0</StatusCode>=x</a>\r\n--b--",
                 "1000||"},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Said(row.reply), row.said);
    }
}

TEST(Mm7Reply, TheVariationSaysWhichNamesGoFirst) {
    const std::string both = Submitted(
        "<StatusCode>2000</StatusCode><MessageID>s</MessageID>"
        "<Request-Status>1000</Request-Status><Message-ID>o</Message-ID>");
    EXPECT_EQ(Said(both, mms::asMMS_MM7VARIATION_3GPP), "2000||s");
    EXPECT_EQ(Said(both, mms::asMMS_MM7VARIATION_ERICSSON), "1000||o");
    EXPECT_EQ(Said(both, mms::asMMS_MM7VARIATION_PAP), "1000||o");
    EXPECT_EQ(Said(Submitted("<StatusCode>1000</StatusCode>"), mms::asMMS_MM7VARIATION_PAP), "1000||");
}

TEST(Mm7Reply, CutAnywhereItSaysTheSameOrNothing) {
    const std::string whole =
        "--b\r\nContent-Type: text/xml\r\n\r\n" +
        Submitted("<StatusCode>1000</StatusCode><StatusText>T</StatusText><MessageID>m</MessageID>");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::string said = Said(whole.substr(0, size));
        EXPECT_TRUE(said == "||" || said == "1000||" || said == "1000|T|" || said == "1000|T|m") << said;
    }
}

TEST(Mm7Reply, WhatItMeans) {
    struct Row {
        const char* code;
        std::int32_t result;
    };
    for (const Row& row : {
             Row{"1000", 0},
             Row{"1100", 0},
             Row{"1999", 0},
             Row{"2000", 33800},
             Row{"2001", 33801},
             Row{"2009", 33809},
             Row{"2010", 33800},
             Row{"2500", 33800},
             Row{"2999", 33800},
             Row{"3000", 33820},
             Row{"3004", 33824},
             Row{"3005", 33820},
             Row{"4000", 33830},
             Row{"4001", 33831},
             Row{"4008", 33838},
             Row{"4009", 33830},
             Row{"4999", 33830},
             Row{"999", 33830},
             Row{"5000", 33830},
             Row{"0", 33830},
             Row{"", 33830},
             Row{"1000x", 33830},
             Row{"-1000", 33830},
             Row{"4294968296", 33830},
             Row{"99999999999999999999", 33830},
             Row{"Ok", 33830},
         }) {
        EXPECT_EQ(ResultOf({.statusCode = row.code}), row.result) << row.code;
    }
    EXPECT_EQ(ResultOf({.statusCode = "1000", .isFault = true}), 33830);
    EXPECT_EQ(ResultOf({.statusCode = "2002", .isFault = true}), 33802);
}

}  // namespace
