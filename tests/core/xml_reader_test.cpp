// The XML reader: what documents mean, where it ends, and what it takes from nobody.
#include "foundation/XmlReader.h"
#include "foundation/XmlText.h"

#include <gtest/gtest.h>

namespace {

using xml::Reader;
using Fault = Reader::Fault;
using Token = Reader::Token;

// "<a x='1'>text</a>" as "+a [text] -a ", and how it ended. Text that a fault ends is left out.
struct Walk {
    std::string seen;
    Fault fault = Fault::kNone;
};

Walk WalkThrough(std::string_view document, xml::Limits limits = {}) {
    Reader reader(document, limits);
    Walk walk;
    std::string text;
    while (true) {
        const Token token = reader.Next();
        if (token == Token::kText) {
            text += reader.Text();
            continue;
        }
        if (!text.empty() && token != Token::kFault) walk.seen += "[" + text + "] ";
        text.clear();
        if (token == Token::kStart) walk.seen += "+" + std::string(reader.Name()) + " ";
        if (token == Token::kEnd) walk.seen += "-" + std::string(reader.Name()) + " ";
        if (token == Token::kDone || token == Token::kFault) break;
    }
    walk.fault = reader.WhatIsWrong();
    EXPECT_EQ(reader.Next() == Token::kFault, walk.fault != Fault::kNone);
    return walk;
}

struct Row {
    std::string document;
    std::string seen;
    Fault fault = Fault::kNone;
};

// A document whose octets include zeros.
template <std::size_t N>
std::string Octets(const char (&octets)[N]) {
    return {octets, N - 1};
}

const std::vector<Row>& Documents() {
    static const std::vector<Row> rows{
        {"<a/>", "+a -a "},
        {"<?xml version='1.0'?>\r\n<!-- c --><a><b>x</b>y</a>\n<?p?><!-- - > -->\n", "+a +b [x] -b [y] -a "},
        {"<a b='1' c = \"<>\"/>", "", Fault::kSyntax},
        {"<a b='1' c = \">'\"\n>x</a\t>", "+a [x] -a "},
        {"<m:a xmlns:m='u'><m:b/></m:a>", "+m:a +m:b -m:b -m:a "},
        {"<a>1 &lt; 2 &amp;&amp; 3 &gt; 2 &quot;&apos;</a>", "+a [1 < 2 && 3 > 2 \"'] -a "},
        {"<a>&#65;&#x42;&#xe9;&#8364;&#x1F600;</a>", "+a [AB\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80] -a "},
        {"<a>x<![CDATA[<b>&amp;]]]]><![CDATA[>]]>y</a>", "+a [x<b>&amp;]]>y] -a "},
        {"<a>x<!-- <b> -- &none; --->y<?p <c> ?>z</a>", "+a [xyz] -a "},
        {"<a>1\r\n2\r3\n&#13;<![CDATA[\r\n]]></a>", "+a [1\n2\n3\n\r\n] -a "},
        {"<a.b-c_d/>", "+a.b-c_d -a.b-c_d "},
        {"<_/>", "+_ -_ "},
        {"<a>&#9;&#10;&#xD7FF;&#xE000;&#xFFFD;&#x10FFFF;</a>",
         "+a [\t\n\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xF4\x8F\xBF\xBF] -a "},
        {"<\xC3\xA9l\xC3\xA9ment/>", "+\xC3\xA9l\xC3\xA9ment -\xC3\xA9l\xC3\xA9ment "},
        // Document types are passed over; nothing in them is put in.
        {"<!DOCTYPE a SYSTEM 'file:///etc/passwd' [<!ENTITY e \"]>\"><!-- ]>' --><?p ]>?>]><a>x</a>",
         "+a [x] -a "},
        {"<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>", "+a ", Fault::kEntity},
        {"<!DOCTYPE html><html><br></html>", "+html +br ", Fault::kSyntax},
        {"<!DOCTYPE a><!DOCTYPE a><a/>", "", Fault::kSyntax},
        {"<a><!DOCTYPE a></a>", "+a ", Fault::kSyntax},
        // Character sets
        {"\xEF\xBB\xBF<a>\xC3\xA9</a>", "+a [\xC3\xA9] -a "},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE9</a>", "+a [\xC3\xA9] -a "},
        {"<?xml version='1.0' encoding='windows-1252'?><a>\x80</a>", "+a [\xE2\x82\xAC] -a "},
        {"<?xml version='1.0' encoding = 'us-ascii' ?><a>e</a>", "+a [e] -a "},
        {"<?xml encoding='utf-16'?><a>e</a>", "+a [e] -a "},
        {"\xEF\xBB\xBF<?xml encoding='iso-8859-1'?><a>\xC3\xA9</a>", "+a [\xC3\xA9] -a "},
        {"\xEF\xBB\xBF<?xml encoding='ebcdic'?><a>\xC3\xA9</a>", "+a [\xC3\xA9] -a "},
        {"<?xml encoding='latin1'?><a>\xE9</a>", "+a [\xC3\xA9] -a "},
        {"<a>\xE9</a>", "+a [\xEF\xBF\xBD] -a "},
        {"<?xml version='1.0' encoding='ISO-8859-15'?><a>\xA4</a>", "", Fault::kEncoding},
        {"<?xml version='1.0' encoding='ISO-8859-15'?><a>e&#8364;</a>", "+a [e\xE2\x82\xAC] -a "},
        {Octets("\xFE\xFF\0<\0a\0>\x20\xAC\0<\0/\0a\0>"), "+a [\xE2\x82\xAC] -a "},
        {Octets("\xFF\xFE<\0a\0/\0>\0"), "+a -a "},
        // What is no XML
        {"404 Not Found", "", Fault::kSyntax},
        {"", "", Fault::kCut},
        {" \n", "", Fault::kCut},
        {"<a></b>", "+a ", Fault::kSyntax},
        {"<a></a></a>", "+a -a ", Fault::kSyntax},
        {"<a/><b/>", "+a -a ", Fault::kSyntax},
        {"<a/>x", "+a -a ", Fault::kSyntax},
        {"<![CDATA[x]]><a/>", "", Fault::kSyntax},
        {"<1/>", "", Fault::kSyntax},
        {"<-/>", "", Fault::kSyntax},
        {"<./>", "", Fault::kSyntax},
        {"< a/>", "", Fault::kSyntax},
        {"<a b/>", "", Fault::kSyntax},
        {"<a b=1/>", "", Fault::kSyntax},
        {"<a b='1'c='2'/>", "", Fault::kSyntax},
        {"<a b='1' b='2'/>", "", Fault::kSyntax},
        {"<a / >", "", Fault::kSyntax},
        {"<a><!ELEMENT b></a>", "+a ", Fault::kSyntax},
        {"<a>&nbsp;</a>", "+a ", Fault::kEntity},
        {"<a>AT&T</a>", "+a ", Fault::kEntity},
        {"<a>&#0;</a>", "+a ", Fault::kEntity},
        {"<a>&#xD800;</a>", "+a ", Fault::kEntity},
        {"<a>&#xFFFE;</a>", "+a ", Fault::kEntity},
        {"<a>&#x110000;</a>", "+a ", Fault::kEntity},
        {"<a>&#99999999999999999999;</a>", "+a ", Fault::kEntity},
        {"<a>&#;&#x;</a>", "+a ", Fault::kEntity},
        {"<a>&#-1;</a>", "+a ", Fault::kEntity},
        {"<a b='&x;'/>", "", Fault::kEntity},
        {Octets("\0\0\0"), "", Fault::kSyntax},
    };
    return rows;
}

TEST(XmlReader, ReadsDocuments) {
    for (const Row& row : Documents()) {
        SCOPED_TRACE(row.document);
        const Walk walk = WalkThrough(row.document);
        EXPECT_EQ(walk.seen, row.seen);
        EXPECT_EQ(walk.fault, row.fault);
    }
}

// What a document gave before it was cut is the beginning of what it says.
TEST(XmlReader, CutAnywhere) {
    for (const Row& row : Documents()) {
        if (row.fault != Fault::kNone || row.document.find('\0') != std::string::npos) continue;
        SCOPED_TRACE(row.document);
        for (std::size_t size = 0; size < row.document.size(); ++size) {
            const Walk walk = WalkThrough(row.document.substr(0, size));
            EXPECT_TRUE(row.seen.starts_with(walk.seen)) << size << ": " << walk.seen;
            const bool isWhole = walk.seen == row.seen && walk.fault == Fault::kNone;
            EXPECT_TRUE(isWhole || walk.fault == Fault::kCut) << size << ": " << static_cast<int>(walk.fault);
        }
    }
}

TEST(XmlReader, NamesAndAttributes) {
    Reader reader(
        "<soap:Envelope xmlns:soap='u' a=\"1 &lt; &#50;\" b=''><soap:Body></soap:Body></soap:Envelope>");
    ASSERT_EQ(reader.Next(), Token::kStart);
    EXPECT_EQ(reader.LocalName(), "Envelope");
    EXPECT_EQ(reader.Depth(), 1U);
    EXPECT_EQ(reader.Attribute("a"), "1 < 2");
    EXPECT_EQ(reader.Attribute("b"), "");
    EXPECT_EQ(reader.Attribute("xmlns:soap"), "u");
    EXPECT_EQ(reader.Attribute("soap"), std::nullopt);
    ASSERT_EQ(reader.Next(), Token::kStart);
    EXPECT_EQ(reader.Depth(), 2U);
    EXPECT_EQ(reader.Attribute("a"), std::nullopt);
    ASSERT_EQ(reader.Next(), Token::kEnd);
    EXPECT_EQ(reader.LocalName(), "Body");
    EXPECT_EQ(reader.Depth(), 1U);
}

std::string Repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
}

TEST(XmlReader, Bounds) {
    struct Bound {
        const char* name;
        std::string document;
        xml::Limits limits;
        Fault fault;
    };
    for (const Bound& row : {
             Bound{"256 deep", Repeated("<a>", 256) + Repeated("</a>", 256), {}, Fault::kNone},
             Bound{"257 deep", Repeated("<a>", 257) + Repeated("</a>", 257), {}, Fault::kTooDeep},
             Bound{"10,000 deep", Repeated("<a>", 10'000) + Repeated("</a>", 10'000), {}, Fault::kTooDeep},
             Bound{"10,000 deep where that is allowed",
                   Repeated("<a>", 10'000) + Repeated("</a>", 10'000),
                   {.depth = 10'000},
                   Fault::kNone},
             Bound{"an empty element at the bound", "<a><a/></a>", {.depth = 2}, Fault::kNone},
             Bound{"as large as allowed", "<a>xx</a>", {.size = 9}, Fault::kNone},
             Bound{"larger", "<a>xx</a>", {.size = 8}, Fault::kTooLarge},
             Bound{"attributes", "<a b='' c='' d=''/>", {.attributes = 2}, Fault::kTooMany},
         }) {
        EXPECT_EQ(WalkThrough(row.document, row.limits).fault, row.fault) << row.name;
    }
}

TEST(XmlReader, AnEntityBombIsNeverPutTogether) {
    std::string document = "<!DOCTYPE a [<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 10; ++i) {
        const std::string reference = "&l" + std::to_string(i - 1) + ";";
        document += "<!ENTITY l" + std::to_string(i) + " \"" + Repeated(reference, 10) + "\">";
    }
    const Walk walk = WalkThrough(document + "]><a>&l9;</a>");
    EXPECT_EQ(walk.fault, Fault::kEntity);
    EXPECT_EQ(walk.seen, "+a ");
}

// What is written for XML reads back as it was.
TEST(XmlReader, ReadsWhatIsEscaped) {
    std::string all;
    for (int c = 0x20; c < 0x7F; ++c) all += static_cast<char>(c);
    all += "\t\n\xC3\xA9]]>";
    EXPECT_EQ(WalkThrough("<a>" + xml::Escape(all) + "</a>").seen, "+a [" + all + "] -a ");
}

}  // namespace
