// Octets, hexadecimal, base64 and XML text.
#include "foundation/Base64.h"
#include "foundation/Hex.h"
#include "foundation/OctetReader.h"
#include "foundation/Utf8.h"
#include "foundation/XmlText.h"
#include "support/Octets.h"

#include <gtest/gtest.h>

namespace {

TEST(Hex, IsReadFromBothKindsOfText) {
    struct Row {
        std::string text, octets;
    };
    for (const Row& row : {Row{"", ""}, Row{"0aF9", "\x0a\xf9"}, Row{"123", "\x12"}, Row{"zF", "\x0f"}}) {
        EXPECT_EQ(hex::OctetsOf(std::string_view(row.text)), row.octets) << row.text;
        const std::u16string wide(row.text.begin(), row.text.end());
        EXPECT_EQ(hex::OctetsOf(std::u16string_view(wide)), row.octets) << row.text;
    }
    EXPECT_EQ(hex::OctetsOf(std::u16string_view(u"\u0131\u0141")), std::string(1, '\0'));
}

TEST(OctetReader, GivesZerosPastTheEndAndRemembersIt) {
    const std::string octets = OctetText("01 0203 'ab' 00 'rest'");
    OctetReader in(octets);
    EXPECT_EQ(in.Octet(), 1);
    EXPECT_EQ(in.Number(2), 0x0203U);
    EXPECT_EQ(in.TextString(), "ab");
    EXPECT_EQ(in.Take(2), "re");
    EXPECT_FALSE(in.Overrun());
    EXPECT_EQ(in.TextString(), "st");  // its zero octet is missing
    EXPECT_TRUE(in.Overrun());
    EXPECT_TRUE(in.AtEnd());
    EXPECT_EQ(in.Number(4), 0U);

    OctetReader cut(octets);
    cut.Skip(8);
    EXPECT_EQ(cut.Number(4), 0x73740000U);
    EXPECT_TRUE(cut.Overrun());
    OctetReader taken(octets);
    EXPECT_EQ(taken.Take(SIZE_MAX), octets);
    EXPECT_TRUE(taken.Overrun());
}

// RFC 4648 chapter 10, and lines.
TEST(Base64, EncodesTheStandardsExamples) {
    struct Row {
        std::string octets;
        std::size_t line;
        std::string text;
    };
    for (const Row& row : {
             Row{"", 0, ""},
             Row{"", 76, ""},
             Row{"f", 0, "Zg=="},
             Row{"fo", 0, "Zm8="},
             Row{"foo", 0, "Zm9v"},
             Row{"foob", 0, "Zm9vYg=="},
             Row{"fooba", 0, "Zm9vYmE="},
             Row{"foobar", 0, "Zm9vYmFy"},
             Row{OctetText("FBFF BF 00 10 83"), 0, "+/+/ABCD"},
             Row{"foobar", 8, "Zm9vYmFy\r\n"},
             Row{"foobarf", 8, "Zm9vYmFy\r\nZg==\r\n"},
             Row{"foobarfo", 4, "Zm9v\r\nYmFy\r\nZm8=\r\n"},
             Row{"foofo", 8, "Zm9vZm8=\r\n"},
         }) {
        EXPECT_EQ(base64::Encode(row.octets, row.line), row.text) << row.octets << " " << row.line;
    }
}

// Both ways of encoding, in groups of six octets and of three, against the definition, digit by digit.
TEST(Base64, IsReadAsItWasWritten) {
    std::string octets;
    for (std::uint32_t i = 0; i < 700; ++i) octets += static_cast<char>(i * 7 + i / 256);
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t size = 0; size <= octets.size(); ++size) {
        const std::string_view some = std::string_view(octets).substr(0, size);
        const std::string text = base64::Encode(some);
        for (std::size_t bit = 0; bit < 8 * size; ++bit) {
            const bool in = (static_cast<unsigned char>(some[bit / 8]) >> (7 - bit % 8) & 1) != 0;
            ASSERT_EQ(kDigits.find(text[bit / 6]) >> (5 - bit % 6) & 1, in ? 1U : 0U) << size << " " << bit;
        }
        EXPECT_EQ(text.size(), base64::EncodedSize(size));
        EXPECT_EQ(base64::Decode(text), some);
        const std::string lines = base64::Encode(some, 76);
        EXPECT_EQ(lines.size(), base64::EncodedSize(size, 76));
        std::string joined = lines;
        std::erase_if(joined, [](char c) { return c == '\r' || c == '\n'; });
        EXPECT_EQ(joined, text);
    }
    std::string behind = "before ";
    base64::Append(behind, "foobar", 4);
    EXPECT_EQ(behind, "before Zm9v\r\nYmFy\r\n");
}

TEST(Base64, IsReadLeniently) {
    using Text = std::optional<std::string>;
    struct Row {
        std::string text;
        Text octets;
    };
    for (const Row& row : {
             Row{"VXNlcm5hbWU6", "Username:"},
             Row{" UGFzc3dvcmQ6\r\n", "Password:"},
             Row{"Zg==", "f"},
             Row{"Zg=", "f"},
             Row{"Zg", "f"},
             Row{"Zm8=", "fo"},
             Row{"Zm8", "fo"},
             Row{"", ""},
             Row{"=", ""},
             Row{"==", ""},
             Row{"A", std::nullopt},
             Row{"Zm9vA===", std::nullopt},
             Row{"===", std::nullopt},
             Row{"Zm 9v", std::nullopt},
             Row{"Zm=v", std::nullopt},
             Row{"Zm9-", std::nullopt},
             Row{std::string("Zm9\0", 4), std::nullopt},
         }) {
        EXPECT_EQ(base64::Decode(row.text), row.octets) << row.text;
    }
}

TEST(XmlText, EscapesWhatHasAMeaning) {
    EXPECT_EQ(xml::Escape("a<b>&\"c'\xe9]]>"), "a&lt;b&gt;&amp;&quot;c&apos;\xe9]]&gt;");
    EXPECT_EQ(xml::Escape(std::string("\0\x1b\t\r\n", 5)), "  \t\r\n");
}

TEST(Utf8, IsReadAndWritten) {
    struct Row {
        std::u16string text;
        std::string octets;
    };
    for (const Row& row : {
             Row{u"", ""},
             Row{std::u16string(1, u'\0'), std::string(1, '\0')},
             Row{u"a\u007F\u0080\u07FF\u0800\uFFFF", "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
             Row{u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
         }) {
        EXPECT_EQ(ToUtf8(row.text), row.octets);
        EXPECT_EQ(FromUtf8(row.octets), row.text);
        EXPECT_TRUE(IsUtf8(row.octets));
    }
    for (const std::u16string& half : {u"\xD800", u"\xDC00", u"\xDC00\xD800", u"\xD800x"}) {
        EXPECT_EQ(ToUtf8(half).substr(0, 3), "\xEF\xBF\xBD");
    }
    // Overlong, halves of pairs, beyond the last character, cut, a stray octet.
    for (const std::string octets :
         {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8", "\xE2\x82", "\x80"}) {
        EXPECT_FALSE(IsUtf8(octets));
        EXPECT_EQ(FromUtf8(octets), std::u16string(octets.size(), u'\uFFFD'));
    }
}

}  // namespace
