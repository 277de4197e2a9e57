// The HTTP channel without I/O: templates, requests of messages, and what replies mean.
#include "http/HttpSubmit.h"
#include "http/HttpVerdict.h"

#include <gtest/gtest.h>

namespace {

TEST(HttpTemplate, FillsSplitsAndLeavesTheRest) {
    const HttpFields fields{.recipient = "+316/1?&",
                            .sender = "A B\r\n%",
                            .body = u"A\u20AC",
                            .alphabet = Alphabet::kUcs2,
                            .dcs = 8};
    struct Row {
        const char* text;
        const char* url;
        const char* body;
    };
    for (const Row& row : {
             // The split, and slashes.
             Row{"gw:80/send?to=%MESSAGERECIPIENT%", "gw:80/send", "to=%2B316%2F1%3F%26"},
             Row{"gw/send/%MESSAGERECIPIENT%", "gw/send/%2B316%2F1%3F%26", ""},
             Row{"gw/?a=1?b=2", "gw/", "a=1?b=2"},
             Row{"gw/send?", "gw/send", ""},
             Row{"?x", "", "x"},
             Row{"http://gw//send?u=http://x//y", "http:/gw/send", "u=http:/x/y"},
             Row{"gw///x////y", "gw/x/y", ""},
             Row{"", "", ""},
             // Every placeholder.
             Row{"g?%MESSAGESENDER%", "g", "A%20B%0D%0A%25"},
             Row{"g?%MESSAGEDATA%", "g", "004120AC"},
             Row{"g?%MESSAGEDATAHEX16%", "g", "004120AC"},
             Row{"g?%MESSAGEDATAHEX8%", "g", "41AC"},
             Row{"g?%MESSAGEDCS%,%MESSAGEDCSHEX%,%MESSAGEUDH%", "g", "8,08,0"},
             Row{"g%MESSAGEDCS%?%MESSAGEDCS%%MESSAGEDCS%", "g8", "88"},
             // What is none.
             Row{"g?%", "g", "%"},
             Row{"g?%%", "g", "%%"},
             Row{"g?%MESSAGEDCS", "g", "%MESSAGEDCS"},
             Row{"g?MESSAGEDCS%", "g", "MESSAGEDCS%"},
             Row{"g?%messagedcs%%MESSAGE%%41%", "g", "%messagedcs%%MESSAGE%%41%"},
             Row{"g?100%%MESSAGEDCS%%", "g", "100%8%"},
             Row{"g?%MESSAGE?DCS%", "g", "%MESSAGE?DCS%"},
             Row{"g?%MESSAGE//DCS%", "g", "%MESSAGE/DCS%"},
             // A percent sign that two share belongs to the one that is looked for first.
             Row{"g?%MESSAGEDCS%MESSAGEDCS%", "g", "8MESSAGEDCS%"},
             Row{"g?%MESSAGEDCS%MESSAGEDATA%", "g", "%MESSAGEDCS004120AC"},
             Row{"g?%MESSAGEUDH%MESSAGEDCSHEX%MESSAGEDCS%", "g", "0MESSAGEDCSHEX8"},
         }) {
        SCOPED_TRACE(row.text);
        const HttpRequest request = FillHttpTemplate(row.text, fields);
        EXPECT_EQ(request.url, row.url);
        EXPECT_EQ(request.body, row.body);
    }
}

TEST(HttpTemplate, ValuesAreNotLookedThrough) {
    HttpFields fields{.sender = "UDH", .text = "%MESSAGEDCS%", .hasHeader = true};
    EXPECT_EQ(FillHttpTemplate("g?%MESSAGE%MESSAGESENDER%%", fields).body, "%MESSAGEUDH%");
    EXPECT_EQ(FillHttpTemplate("g?%MESSAGEDATA%", fields).body, "%25MESSAGEDCS%25");
}

TEST(HttpTemplate, EveryOctetOfAValueStaysOne) {
    std::string octets;
    for (int octet = 0; octet < 256; ++octet) octets += static_cast<char>(octet);
    const HttpRequest request = FillHttpTemplate("g/%MESSAGESENDER%?x", {.sender = octets});
    EXPECT_EQ(request.body, "x");
    EXPECT_EQ(request.url.size(), 2 + 66 + 3 * 190);  // 66 characters are unreserved
    EXPECT_EQ(request.url.find_first_not_of(
                  "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-._~%", 2),
              std::string::npos);
    EXPECT_TRUE(request.url.ends_with("%FD%FE%FF"));
}

TEST(HttpTemplate, TakesTemplatesOfAnySize) {
    std::string all;
    std::string filled;
    for (int i = 0; i < 5000; ++i) {
        all += "%MESSAGEDCS%";
        filled += "0";
    }
    EXPECT_EQ(FillHttpTemplate("g?" + all, {}).body, filled);
    const std::string signs(65536, '%');
    EXPECT_EQ(FillHttpTemplate("g?" + signs, {}).body, signs);
}

// --- messages

HttpProviderSettings Provider() {
    HttpProviderSettings settings;
    settings.host = "gw";
    settings.urlText = "t?%MESSAGERECIPIENT%&%MESSAGESENDER%&%MESSAGEDCS%&%MESSAGEUDH%&%MESSAGEDATA%";
    settings.urlBinary =
        "b?%MESSAGEDCS%&%MESSAGEDCSHEX%&%MESSAGEUDH%&%MESSAGEDATA%&%MESSAGEDATAHEX8%&%MESSAGEDATAHEX16%";
    settings.urlUnicode = "u?%MESSAGEDCS%&%MESSAGEUDH%&%MESSAGEDATA%&%MESSAGEDATAHEX8%";
    return settings;
}

CSmsMessageX Message(std::int32_t format, std::u16string data) {
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    message.Sender = "Caf\xE9";
    message.Format = format;
    message.Data = std::move(data);
    return message;
}

TEST(HttpSubmit, EveryFormatHasItsTemplateAndCoding) {
    struct Row {
        const char* charset;
        std::int32_t format;
        std::u16string data;
        const char* url;
        const char* body;
    };
    for (const Row& row : {
             Row{"", 0, u"Hi_ @\u00E9\u20AC\u00A7", "gw/t", "%2B31612345678&Caf%E9&0&0&Hi%11%20%00%05%1Be_"},
             Row{"", 0, u"\u0416[]", "gw/t", "%2B31612345678&Caf%E9&0&0&%1B%3C%1B%3E"},
             Row{"utf-8", 0, u"@\u00E9\u20AC\U0001F600\xD800", "gw/t",
                 "%2B31612345678&Caf%C3%A9&0&0&%40%C3%A9%E2%82%AC%F0%9F%98%80%EF%BF%BD"},
             Row{"ISO-8859-1", 0, u"@\u00E9\u20AC", "gw/t", "%2B31612345678&Caf%E9&0&0&%40%E9%3F"},
             Row{"Windows-1252", 0, u"@\u00E9\u20AC\u0416", "gw/t", "%2B31612345678&Caf%E9&0&0&%40%E9%80%3F"},
             Row{"us-ascii", 0, u"@\u00E9~", "gw/t", "%2B31612345678&Caf%3F&0&0&%40%3F~"},
             Row{"", 10, u"01fF", "gw/b", "245&F5&0&01FF&01FF&000100FF"},
             Row{"utf-8", 11, u"0003A10201", "gw/b", "245&F5&1&0003A10201&0003A10201&00000003 00A100020001"},
             Row{"", 20, u"A\u0416", "gw/u", "8&0&00410416&4116"},
             Row{"utf-8", 20, u"\U0001F600", "gw/u", "8&0&D83DDE00&3D00"},
             Row{"", 0, u"", "gw/t", "%2B31612345678&Caf%E9&0&0&"},
             Row{"", 10, u"", "gw/b", "245&F5&0&&&"},
         }) {
        SCOPED_TRACE(std::string(row.charset) + row.body);
        HttpProviderSettings settings = Provider();
        settings.charset = row.charset;
        HttpRequest request;
        EXPECT_EQ(BuildHttpRequest(settings, Message(row.format, row.data), request), 0);
        EXPECT_EQ(request.url, row.url);
        std::string expected = row.body;
        std::erase(expected, ' ');
        EXPECT_EQ(request.body, expected);
    }
}

TEST(HttpSubmit, TheAddressIsHostPortAndTemplate) {
    struct Row {
        const char* host;
        std::int32_t port;
        const char* text;
        const char* url;
    };
    for (const Row& row : {
             Row{"gw", 0, "/a/b", "gw/a/b"},
             Row{"gw/", 0, "/a", "gw/a"},
             Row{"gw", 8080, "a", "gw:8080/a"},
             Row{"gw", -1, "a", "gw:-1/a"},
             Row{"https://gw", 8443, "a", "https:/gw:8443/a"},
             Row{"%MESSAGEDCS%.gw", 0, "a", "0.gw/a"},
             Row{"", 0, "a", "/a"},
         }) {
        HttpProviderSettings settings;
        settings.host = row.host;
        settings.port = row.port;
        settings.urlText = row.text;
        HttpRequest request;
        EXPECT_EQ(BuildHttpRequest(settings, Message(0, u"Hi"), request), 0);
        EXPECT_EQ(request.url, row.url);
    }
}

TEST(HttpSubmit, ChecksInTheirOrder) {
    const HttpProviderSettings good = Provider();
    HttpProviderSettings none = good;
    none.urlText = none.urlBinary = none.urlUnicode = "";
    HttpProviderSettings strange = good;
    strange.charset = "utf-8\r\nX-Header: 1";
    struct Row {
        const char* name;
        const HttpProviderSettings& settings;
        const char* recipient;
        std::int32_t format;
        std::u16string data;
        std::int32_t code;
    };
    const std::u16string many(65536, u'A');
    for (const Row& row : {
             Row{"no recipient", none, "", 99, u"x", 34031},
             Row{"short", good, "123", 0, u"x", 34031},
             Row{"blank", good, "+31 6123", 0, u"x", 34031},
             Row{"letters", good, "+316x123", 0, u"x", 34031},
             Row{"line end", good, "+31612345\r\n", 0, u"x", 34031},
             Row{"long", good, "12345678901234567890123456789012345678901234567890123456789012345", 0, u"x",
                 34031},
             Row{"national", good, "0612345678", 0, u"x", 0},
             Row{"a letter in front", good, "X1234", 0, u"x", 0},
             Row{"flash", none, "1234", 1, u"x", 34034},
             Row{"multipart", none, "1234", 2, u"x", 34034},
             Row{"unicode multipart", none, "1234", 22, u"x", 34034},
             Row{"unknown", none, "1234", -1, u"x", 34034},
             Row{"odd", none, "1234", 10, u"ABC", 34034},
             Row{"not hexadecimal", none, "1234", 11, u"0G", 34034},
             Row{"not hexadecimal in its low octet only", none, "1234", 10, u"\u0130\u0131", 34034},
             Row{"charset", strange, "1234", 20, u"x", 34034},
             Row{"no text template", none, "1234", 0, many, 33303},
             Row{"no data template", none, "1234", 10, many, 33304},
             Row{"no UDH template", none, "1234", 11, many, 33304},
             Row{"no unicode template", none, "1234", 20, many, 33305},
             Row{"160", good, "1234", 0, std::u16string(160, u'['), 0},
             Row{"161", good, "1234", 0, std::u16string(161, u'a'), 34033},
             Row{"140", good, "1234", 10, std::u16string(280, u'a'), 0},
             Row{"141", good, "1234", 11, std::u16string(282, u'a'), 34033},
             Row{"70", good, "1234", 20, std::u16string(70, u'a'), 0},
             Row{"71", good, "1234", 20, std::u16string(71, u'a'), 34033},
         }) {
        SCOPED_TRACE(row.name);
        CSmsMessageX message = Message(row.format, row.data);
        message.Recipient = row.recipient;
        HttpRequest request;
        EXPECT_EQ(BuildHttpRequest(row.settings, message, request), row.code);
        EXPECT_EQ(request.url.empty(), row.code != 0);
    }
}

// --- replies

TEST(HttpVerdict, NoCreditThenErrorThenSuccess) {
    struct Row {
        const char* success;
        const char* error;
        std::string reply;
        std::int32_t code;
    };
    const std::string nul("OK\0x", 4);
    for (const Row& row : {
             Row{"OK", "FAIL", "ID OK 1", 0},
             Row{"OK", "FAIL", "OK but FAIL", 33301},
             Row{"OK", "FAIL", "OK FAIL ERR: 301", 33225},
             Row{"ERR: 301", "ERR: 301", "ERR: 301", 33225},
             Row{"OK", "FAIL", "ok", 33302},
             Row{"OK", "FAIL", "", 33302},
             Row{"OK", "", "OK", 0},
             Row{"OK", "", "12", 33302},
             Row{"x", "", nul, 0},
             Row{"OK", "x", nul, 33301},
             // Without a success text, a number.
             Row{"", "", "12345678901234567890", 0},
             Row{"", "", "\r\n 7\t\r\n", 0},
             Row{"", "", "-1", 0},
             Row{"", "", "+1", 0},
             Row{"", "",
                 "\xEF\xBB\xBF"
                 "17",
                 0},
             Row{"", "7", "7", 33301},
             Row{"", "", "0", 33302},
             Row{"", "", "-000", 33302},
             Row{"", "", "", 33302},
             Row{"", "", "-", 33302},
             Row{"", "", "404 Not Found", 33302},
             Row{"", "", "OK 7", 33302},
             Row{"", "", std::string("7\0", 2), 33302},
         }) {
        SCOPED_TRACE(row.reply);
        HttpProviderSettings settings;
        settings.successResponse = row.success;
        settings.errorResponse = row.error;
        EXPECT_EQ(JudgeHttpReply(settings, row.reply), row.code);
    }
}

}  // namespace
