// Frames and blocks for dialled providers, and what becomes of replies.
#include "Common/UcpTap/SMSCMessage.h"
#include "Common/UcpTap/TapResponse.h"
#include "Common/UcpTap/UcpResponse.h"
#include "support/Octets.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

std::string Ucp(std::string_view recipient, std::string_view originator, std::string_view password,
                std::u16string_view text) {
    CSMSCMessage message;
    EXPECT_EQ(message.BuildUcp(recipient, originator, password, text), 0);
    return std::string(message.Frame());
}

std::string Tap(std::string_view recipient, std::string_view text) {
    CSMSCMessage message;
    EXPECT_EQ(message.BuildTap(recipient, text), 0);
    return std::string(message.Frame());
}

TEST(UcpFrames, AreBuiltFieldByField) {
    struct Row {
        const char* recipient;
        const char* originator;
        const char* password;
        std::u16string text;
        const char* frame;
    };
    for (const Row& row : std::vector<Row>{
             {"0612345678", "1234", "", u"Hi", "02 '01/00040/O/01/0612345678/1234//3/4869/8E' 03"},
             {"0612345678", "1234", "pw", u"Hi", "02 '01/00042/O/01/0612345678/1234/pw/3/4869/77' 03"},
             {"", "", "", u"", "02 '01/00022/O/01////3//DF' 03"},
             {"1", "a/b", "p/w", u"\u20AC\0\u00FF\u0003"s, "02 '01/00037/O/01/1/a/b/p/w/3/AC00FF03/F1' 03"},
             // Sums of one digit.
             {"0612345678", "6", "", u"Hi", "02 '01/00037/O/01/0612345678/6//3/4869/0' 00 03"},
             {"0612345678", "9", "", u"Hi", "02 '01/00037/O/01/0612345678/9//3/4869/3' 00 03"},
         }) {
        EXPECT_EQ(HexOf(Ucp(row.recipient, row.originator, row.password, row.text)),
                  HexOf(OctetText(row.frame)));
    }
}

TEST(TapBlocks, EndInTheirChecksum) {
    // The worked example of TAP 1.8.
    EXPECT_EQ(HexOf(Tap("123", "ABC")), HexOf(OctetText("02 '123' 0D 'ABC' 0D 03 '17;' 0D")));
    EXPECT_EQ(HexOf(Tap("", "")), HexOf(OctetText("02 0D 0D 03 '01?' 0D")));
    // Of a sum above 4095 the three lower digits: 2 + 13 + 13 + 3 + 160 * 255 = 9F7F.
    EXPECT_EQ(Tap("", std::string(160, '\xFF')).substr(164), "?7?\r");
    CSMSCMessage logon;
    EXPECT_EQ(logon.BuildTapLogon(""), 0);
    EXPECT_EQ(logon.Frame(), "\x1BPG1\r");
    EXPECT_EQ(logon.BuildTapLogon("123456"), 0);
    EXPECT_EQ(logon.Frame(),
              "\x1BPG1"
              "123456\r");
}

TEST(Frames, FitInto4097Octets) {
    const std::string huge(65'536, '7');
    struct Row {
        const char* name;
        ResultCode (*build)(CSMSCMessage& message, std::string_view text);
        std::size_t without;  // octets of the frame without the text
    };
    for (const Row& row : {
             Row{"recipient", [](CSMSCMessage&m, std::string_view t) { return m.BuildUcp(t, "", "", u""); },
                 24},
             Row{"originator", [](CSMSCMessage&m, std::string_view t) { return m.BuildUcp("", t, "", u""); },
                 24},
             Row{"password", [](CSMSCMessage&m, std::string_view t) { return m.BuildUcp("", "", t, u""); },
                 24},
             Row{"pager", [](CSMSCMessage&m, std::string_view t) { return m.BuildTap(t, ""); }, 8},
             Row{"page", [](CSMSCMessage&m, std::string_view t) { return m.BuildTap("", t); }, 8},
             Row{"logon", [](CSMSCMessage&m, std::string_view t) { return m.BuildTapLogon(t); }, 5},
         }) {
        SCOPED_TRACE(row.name);
        CSMSCMessage message;
        EXPECT_EQ(row.build(message, std::string_view(huge).substr(0, 4097 - row.without)), 0);
        EXPECT_EQ(message.Frame().size(), 4097U);
        EXPECT_EQ(row.build(message, std::string_view(huge).substr(0, 4098 - row.without)), 34033);
        EXPECT_EQ(message.Frame(), "");
        EXPECT_EQ(row.build(message, huge), 34033);
    }
    CSMSCMessage message;
    EXPECT_EQ(message.BuildUcp("", "", "", std::u16string(65'536, u'x')), 34033);
}

TEST(UcpReplies, AreJudged) {
    struct Row {
        const char* octets;
        UcpResult result;
        const char* text;
    };
    constexpr auto kAck = UcpResult::kAcknowledged;
    constexpr auto kNack = UcpResult::kRefused;
    constexpr auto kSyntax = UcpResult::kSyntaxError;
    for (const Row& row : std::vector<Row>{
             {"", UcpResult::kNothingReceived, ""},
             {"02", kSyntax, ""},
             {"02 03", kSyntax, ""},
             {"02 '01/00045/R/01/A/0612345678:211196120000/8A' 03", kAck, "A/0612345678:211196120000"},
             {"02 '01/00019/R/01/a//69' 03", kAck, "a/"},
             {"02 '01/00022/R/01/N/02//07' 03", kNack, "N/02"},
             {"02 '01/00036/R/01/n/01/Checksum error/xx' 03", kNack, "n/01"},
             {"02 '////A/b/' 03", kAck, "A/b"},
             {"02 '////Axy/b/' 03", kAck, "Axy/b"},
             {"02 '////A/b' 03", kAck, "A/b"},
             {"02 '////A' 03", kSyntax, ""},
             {"02 '////' 03", kSyntax, ""},
             {"02 '///A/b/c/' 03", kSyntax, ""},
             {"02 '////X/b/' 03", kSyntax, ""},
             {"02 '01/00045/R/01/A/b/8A'", kSyntax, ""},
             {"'01/00045/R/01/A/b/8A' 03", kSyntax, ""},
             {"'x' 02 '////A/b/' 03", kSyntax, ""},
         }) {
        const UcpResponse reply(OctetText(row.octets));
        EXPECT_EQ(reply.Result(), row.result) << row.octets;
        EXPECT_EQ(reply.Text(), row.text) << row.octets;
    }
}

TEST(UcpReplies, AreFoundOnALine) {
    struct Row {
        const char* heard;
        const char* frame;
        bool isWhole;
    };
    for (const Row& row : std::vector<Row>{
             {"", "", false},
             {"'noise' 03", "'noise' 03", false},
             {"'noise' 02 'ha'", "02 'ha'", false},
             {"'noise' 03 02 'x' 03", "02 'x' 03", true},
             {"02 'ha' 02 'x' 03 'behind'", "02 'x' 03", true},
             {"02 'x' 03 02 'y' 03", "02 'x' 03", true},
             {"02 '01/00019/O/01/A' 03 02 '01/00019/R/01/A' 03", "02 '01/00019/R/01/A' 03", true},
             {"02 '01/00019/O/01/A' 03", "", false},
         }) {
        const std::string heard = OctetText(row.heard);
        const UcpFrame frame = FindUcpFrame(heard);
        EXPECT_EQ(frame.octets, OctetText(row.frame)) << row.heard;
        EXPECT_EQ(frame.isWhole, row.isWhole) << row.heard;
    }
}

TEST(TapReplies, AreJudged) {
    struct Row {
        const char* octets;
        TapResult result;
        const char* text;
    };
    for (const Row& row : std::vector<Row>{
             {"", TapResult::kNothing, ""},
             {"06", TapResult::kNothing, ""},
             {"06 0D", TapResult::kAcknowledged, ""},
             {"'211 Page accepted' 0D 06 0D", TapResult::kAcknowledged, "211 Page accepted"},
             {"0D 'Message submitted' 0D", TapResult::kAcknowledged, ""},
             {"'INVALID PAGER, Message submitted'", TapResult::kAcknowledged,
              "INVALID PAGER, Message submitted"},
             {"'INVALID PAGER ID' 0D 06 0D", TapResult::kInvalidPager, "INVALID PAGER ID"},
             {"'invalid pager, not allowed'", TapResult::kInvalidPager, "invalid pager, not allowed"},
             {"'Invalid Pager'", TapResult::kNothing, "Invalid Pager"},
             {"'not allowed: system problem'", TapResult::kNotAllowed, "not allowed: system problem"},
             {"'NOT ALLOWED' 0D 1E 0D", TapResult::kNotAllowed, "NOT ALLOWED"},
             {"'system problem' 1E 0D", TapResult::kSystemProblem, "system problem"},
             {"'SYSTEM PROBLEM' 06 0D", TapResult::kSystemProblem, "SYSTEM PROBLEM"},
             {"'late ~' 7F 06 0D 1E 0D", TapResult::kAcknowledged, "late ~"},
             {"1E 0D", TapResult::kRefused, ""},
             {"'507' 0D 15 0D", TapResult::kRefused, "507"},
         }) {
        const TapResponse reply(OctetText(row.octets));
        EXPECT_EQ(reply.Result(), row.result) << row.octets;
        EXPECT_EQ(reply.Text(), row.text) << row.octets;
    }
}

}  // namespace
