// Header fields and bodies of several parts.
#include "Common/Mime/HeaderText.h"
#include "Common/Mime/MultipartWriter.h"
#include "mms/MmsMime.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(MimeHeader, IsPlainOrInEncodedWords) {
    struct Row {
        std::u16string value;
        std::string field;
    };
    const std::string longPlain(989, 'x');
    const std::u16string wide(989, u'x');
    for (const Row& row : {
             Row{u"", "Subject: \r\n"},
             Row{u"The subject, plain: ~\t\"<>", "Subject: The subject, plain: ~\t\"<>\r\n"},
             Row{u" at its ends ", "Subject:  at its ends \r\n"},
             Row{wide, "Subject: " + longPlain + "\r\n"},
             Row{u"Gr\u00fc\u00dfe", "Subject: =?utf-8?B?R3LDvMOfZQ==?=\r\n"},
             Row{u"\u4f60\u597d \U0001F600", "Subject: =?utf-8?B?5L2g5aW9IPCfmIA=?=\r\n"},
             Row{u"=?us-ascii?Q?no?=", "Subject: =?utf-8?B?PT91cy1hc2NpaT9RP25vPz0=?=\r\n"},
             Row{u"bell \x07", "Subject: =?utf-8?B?YmVsbCAH?=\r\n"},
             Row{u"\xD800", "Subject: =?utf-8?B?77+9?=\r\n"},
             // 38 of 39 octets are whole characters here, and 44 of 45 behind the fold.
             Row{std::u16string(50, u'\u00e4'),
                 "Subject: =?utf-8?B?w6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6Q=?=\r\n"
                 " =?utf-8?B?w6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6TDpMOkw6Q=?=\r\n"
                 " =?utf-8?B?w6TDpMOkw6TDpMOkw6TDpMOk?=\r\n"},
             // A pair counts as one character.
             Row{u"abcdef" + std::u16string(u"\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600"
                                            u"\U0001F600\U0001F600\U0001F600"),
                 "Subject: =?utf-8?B?YWJjZGVm8J+YgPCfmIDwn5iA8J+YgPCfmIDwn5iA8J+YgPCfmIA=?=\r\n"
                 " =?utf-8?B?8J+YgA==?=\r\n"},
         }) {
        std::string out;
        mime::AppendHeader(out, "Subject", row.value);
        EXPECT_EQ(out, row.field);
    }
    std::string tooLong;
    mime::AppendHeader(tooLong, "Subject", wide + u'x');
    EXPECT_TRUE(tooLong.starts_with("Subject: =?utf-8?B?eHh4"));
    // Where a name leaves no room, the first word stands on the next line.
    std::string narrow;
    mime::AppendHeader(narrow, std::string(57, 'N'), u"\u00fc");
    EXPECT_EQ(narrow, std::string(57, 'N') + ": \r\n =?utf-8?B?w7w=?=\r\n");
}

TEST(MimeHeader, StaysOneField) {
    std::string out;
    mime::AppendHeader(out, "From", std::string_view("a\r\nBcc: b\0\n.\n", 13));
    EXPECT_EQ(out, "From: a  Bcc: b  . \r\n");
    out.clear();
    mime::AppendHeader(out, "From", std::string_view("\xe4\r\n.\r\n"));  // "ä" in the code page
    EXPECT_EQ(out, "From: =?utf-8?B?w6QgIC4gIA==?=\r\n");
}

TEST(MimeHeader, EncodesOnlyTheNameOfAnAddress) {
    struct Row {
        std::string address, field;
    };
    for (const Row& row : {
             Row{"user@host", "From: user@host\r\n"},
             Row{"31612345678", "From: 31612345678\r\n"},
             Row{"A Name <user@host>", "From: A Name <user@host>\r\n"},
             Row{"J\xf6rg <j@host>", "From: =?utf-8?B?SsO2cmc=?=\r\n <j@host>\r\n"},
             Row{"\"J\xf6rg \" <j@host>", "From: =?utf-8?B?SsO2cmcg?=\r\n <j@host>\r\n"},
             Row{"J\xf6rg\r\n <j@host>", "From: =?utf-8?B?SsO2cmc=?=\r\n <j@host>\r\n"},
             Row{"J\xf6\r\nrg <j@host>", "From: =?utf-8?B?SsO2ICByZw==?=\r\n <j@host>\r\n"},
             Row{"\r\n<j@host>", "From:   <j@host>\r\n"},
             Row{"<j\xf6@host>", "From: =?utf-8?B?PGrDtkBob3N0Pg==?=\r\n"},
             Row{"\xf6 <j\n@host>", "From: =?utf-8?B?w7YgPGogQGhvc3Q+?=\r\n"},
             Row{"\xf6 <j@host", "From: =?utf-8?B?w7YgPGpAaG9zdA==?=\r\n"},
         }) {
        std::string out;
        mime::AppendAddressHeader(out, "From", row.address);
        EXPECT_EQ(out, row.field);
    }
    // An address that no line can hold is encoded with its name.
    for (const std::size_t size : {997U, 998U}) {
        const std::string route = '<' + std::string(size - 2, 'u') + '>';
        std::string out;
        mime::AppendAddressHeader(out, "From", "\xf6 " + route);
        EXPECT_EQ(out.find("\r\n " + route + "\r\n") != std::string::npos, size == 997);
    }
}

TEST(Multipart, PartsStandBetweenBoundaries) {
    std::string out = "before\r\n";
    mime::MultipartWriter outer(out, "B1");
    outer.Part({{"Content-Type", "text/xml"}, {"Content-ID", ""}});
    outer.Binary("<a/>\n");
    outer.Part({{"Content-Type", "multipart/related; boundary=\"B2\""}});
    mime::MultipartWriter inner(out, "B2");
    inner.Part({{"Content-location", "\xe4.jpg"}});
    inner.Base64(std::string(58, 'x'));
    inner.Part({});
    inner.Base64("");
    inner.Part({});
    inner.Binary("");
    inner.End();
    outer.End();
    const std::string line = "eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4";
    EXPECT_EQ(out,
              "before\r\n--B1\r\nContent-Type: text/xml\r\n\r\n<a/>\n\r\n"
              "--B1\r\nContent-Type: multipart/related; boundary=\"B2\"\r\n\r\n"
              "--B2\r\nContent-location: =?utf-8?B?w6QuanBn?=\r\n\r\n" +
                  line +
                  "\r\neA==\r\n"
                  "--B2\r\n\r\n\r\n--B2\r\n\r\n\r\n--B2--\r\n--B1--\r\n");
}

TEST(Multipart, ContentOfKnownSizeTakesTheMemoryThatWasAskedFor) {
    for (const std::size_t size : {0U, 1U, 2U, 3U, 56U, 57U, 58U, 114U, 300'000U}) {
        std::string out;
        out.reserve(mime::Base64Size(size) + mime::MultipartWriter::kPartFraming);
        const char* const memory = out.data();
        mime::MultipartWriter writer(out, mime::NewBoundary());
        writer.Part({{"Content-Type", "image/jpeg"}});
        const std::size_t before = out.size();
        writer.Base64(std::string(size, '\xff'));
        EXPECT_EQ(out.size() - before, size == 0 ? 2 : mime::Base64Size(size));
        writer.End();
        EXPECT_EQ(out.data(), memory) << size;
    }
}

TEST(Multipart, BoundariesAreMadeOnce) {
    const std::string boundary = mime::NewBoundary();
    EXPECT_EQ(boundary.size(), std::string_view("---mime-boundary-00000000.00000000---").size());
    EXPECT_TRUE(boundary.starts_with("---mime-boundary-"));
    EXPECT_EQ(boundary[25], '.');
    EXPECT_TRUE(boundary.ends_with("---"));
    EXPECT_NE(mime::NewBoundary(), boundary);
}

TEST(MimeType, HasItsParameters) {
    struct Row {
        CMmsMessagePart part;
        std::string type;
    };
    for (const Row& row : {
             Row{{.contentType = "image/jpeg"}, "image/jpeg"},
             Row{{.contentType = "text/plain", .charset = 65001}, "text/plain; charset=\"utf-8\""},
             Row{{.contentType = "text/plain", .charset = 1252}, "text/plain"},
             Row{{}, "application/octet-stream"},
             Row{{.contentType = std::string(kDrmMessageType), .drmBoundary = "drm-boundary-1"},
                 "application/vnd.oma.drm.message; boundary=\"drm-boundary-1\""},
         }) {
        EXPECT_EQ(mms::MimeTypeOf(row.part), row.type);
    }
}

}  // namespace
