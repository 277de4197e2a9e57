// The GSM channel's dialogues, from the opening to the report, against a scripted modem in virtual time.
#include "gsm/GsmModem.h"
#include "support/ScriptedModem.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

class Gsm : public testing::Test {
  protected:
    Gsm() {
        gsm.settings.device = "COM3";
        modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\",\"ME\"),(\"SM\",\"MT\")\r\n\r\nOK\r\n"});
        modem.On("AT+CMGF=?", {"\r\n+CMGF: (0,1)\r\n\r\nOK\r\n"});
        modem.On("AT+CNMI=?", {"\r\n+CNMI: (1,2),(0-3),(0,2),(0-2),(1)\r\n\r\nOK\r\n"});
        modem.On("AT+CMGS=14", {"\r\n> "});
        modem.On(kPdu, {"\r\n+CMGS: 17\r\n\r\nOK\r\n"});
    }

    static CSmsMessageX Message(std::u16string text = u"a") {
        CSmsMessageX message;
        message.Recipient = "+31612345678";
        message.Data = std::move(text);
        return message;
    }
    ResultCode Send(const CSmsMessageX& message) { return gsm.Send(message, references); }
    bool Sent(const std::string& command) const {
        return std::ranges::find(modem.commands, command) != modem.commands.end();
    }
    long Count(const std::string& command) const { return std::ranges::count(modem.commands, command); }

    static constexpr const char* kPdu = "0001000B911316325476F800000161";
    const std::vector<std::string> kInitialise = {"ATE0", "AT+CMEE=1", "AT+CPMS=?", "AT+CMGF=?"};
    VirtualClock clock;
    ScriptedModem modem{clock};
    CGsmModem gsm{modem, clock};
    std::string references;
};

TEST_F(Gsm, SendsOnePdu) {
    ASSERT_EQ(Send(Message()), 0);
    std::vector<std::string> expected = kInitialise;
    expected.insert(expected.end(), {"AT+CMGF=0", "AT+CMGS=14", kPdu});
    EXPECT_EQ(modem.commands, expected);
    EXPECT_EQ(references, "17");
    EXPECT_EQ(gsm.Reports().Query("17")->status, 11);
    EXPECT_EQ(modem.openings, modem.closings);
    EXPECT_EQ(clock.Slept(), 500U);  // settling after the opening, and nothing else
}

TEST_F(Gsm, EveryFieldOfAMessageGoesIntoItsPdu) {
    struct Row {
        const char* smsc;
        std::int32_t validity;
        std::uint32_t port;
        const char* length;
        const char* pdu;
    };
    const TemporaryFolder folder;
    for (const Row& row : {
             Row{"", 60, 0, "15", "0011000B911316325476F800000B0161"},
             Row{"", 0, 2948, "21", "0041000B911316325476F80000090605040B84000061"},
             Row{"+31653131313", 0, 0, "21", "07911356131313F301000B911316325476F800000161"},
         }) {
        gsm.SetLogFile(folder.File(row.pdu));
        modem.On(std::string("AT+CMGS=") + row.length, {"\r\n> "});
        modem.On(row.pdu, {"\r\n+CMGS: 3\r\n\r\nOK\r\n"});
        CSmsMessageX message = Message();
        message.SMSC = row.smsc;
        message.ValidityPeriod = row.validity;
        message.DestinationPort = row.port;
        EXPECT_EQ(Send(message), 0) << row.pdu;
        EXPECT_EQ(references, "3") << row.pdu;
        const std::string log = TemporaryFolder::Read(folder.File(row.pdu));
        EXPECT_EQ(log.find("VALIDITY PERIOD   : 60 min\n") != std::string::npos, row.validity != 0);
        EXPECT_NE(log.find("READ STRING,  string=[+CMGS: 3]"), std::string::npos);
    }
}

TEST_F(Gsm, TheOpeningDialogueHasItsExits) {
    struct Row {
        const char* command;
        const char* reply;
        std::int32_t code;
        const char* smsc;
        const char* init;
    };
    for (const Row& row : {
             Row{"ATX", "", 30350, "", "ATX"},
             Row{"ATX", "\r\nERROR\r\n", 0, "", "ATX"},
             Row{"ATE0", "", 30350, "", ""},
             Row{"ATE0", "\r\nERROR\r\n", 0, "", ""},
             Row{"AT+CMEE=1", "", 30350, "", ""},
             Row{"AT+CSCA=\"+31653131313\"", "\r\nERROR\r\n", 33171, "+31653131313", ""},
             Row{"AT+CSCA=\"+31653131313\"", "\r\n+CMS ERROR: 330\r\n", 0, "+31653131313", ""},
             Row{"AT+CSCA=\"+31653131313\"", "", 0, "+31653131313", ""},
             Row{"AT+CPMS=?", "\r\n+CMS ERROR: 310\r\n", 33140, "", ""},
             Row{"AT+CPMS=?", "\r\nERROR\r\n", 30352, "", ""},
             Row{"AT+CMGF=?", "\r\nERROR\r\n", 30352, "", ""},
             Row{"AT+CMGF=0", "\r\nERROR\r\n", 30352, "", ""},
             Row{"AT+CMGS=14", "\r\n+CMS ERROR: 500\r\n", 30352, "", ""},
             Row{"AT+CMGS=14", "", 30350, "", ""},
         }) {
        ScriptedModem other{clock};
        other.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\"),(\"SM\")\r\n\r\nOK\r\n"});
        other.On("AT+CMGF=?", {"\r\n+CMGF: (0,1)\r\n\r\nOK\r\n"});
        other.On("AT+CMGS=14", {"\r\n> "});
        other.On(kPdu, {"\r\n+CMGS: 1\r\n\r\nOK\r\n"});
        other.On(row.command, {row.reply});
        CGsmModem fresh(other, clock);
        fresh.settings.device = "COM3";
        fresh.settings.smsc = row.smsc;
        fresh.settings.initString = row.init;
        EXPECT_EQ(fresh.Send(Message(), references), row.code) << row.command << row.reply;
        EXPECT_EQ(other.openings, other.closings);
    }
    modem.openResult = ResultCode(30104);
    EXPECT_EQ(Send(Message()), 30104);
}

TEST_F(Gsm, RecipientsAreCheckedBeforeTheDeviceIsOpened) {
    for (const auto& [recipient, code] : {std::pair{"123", 34031}, {"+316x", 34031}, {"X12345", 34032}}) {
        CSmsMessageX message = Message();
        message.Recipient = recipient;
        EXPECT_EQ(Send(message), code) << recipient;
    }
    for (const char16_t* body : {u"Hello", u"ABC", u"AB CD", u"ABCG"}) {  // data that is no hexadecimal
        CSmsMessageX message = Message(body);
        message.Format = sms::asMESSAGEFORMAT_DATA;
        EXPECT_EQ(Send(message), 34034);
    }
    EXPECT_EQ(modem.openings, 0);
}

TEST_F(Gsm, SendsThePartsOfALongMessageASecondApart) {
    modem.On("AT+CMGS=153", {"\r\n> "});
    modem.On("AT+CMGS=27", {"\r\n> "});
    modem.Otherwise("\r\nOK\r\n");
    CSmsMessageX message = Message(std::u16string(161, u'a'));
    message.Format = 2;
    for (std::uint32_t reference = 0; reference < 256; ++reference) {  // it starts anywhere
        CGsmCodec codec(reference);
        ASSERT_EQ(codec.Encode({"", message.Recipient, message.Data, 2}), 0);
        const std::string& text = codec.Text();
        const std::size_t at = text.find(';');
        modem.On(text.substr(0, at), {"\r\n+CMGS: 254\r\n\r\nOK\r\n"});
        modem.On(text.substr(at + 1, text.size() - at - 2), {"\r\n+CMGS: 255\r\n\r\nOK\r\n"});
    }
    ASSERT_EQ(Send(message), 0);
    EXPECT_EQ(references, "254;255");
    EXPECT_EQ(clock.Slept(), 1500U);
    EXPECT_EQ(gsm.Reports().Count(), 2U);
}

TEST_F(Gsm, APartThatFailsTakesTheReferencesOfTheOthersWithIt) {
    CSmsMessageX message = Message(u"00112233");
    message.Format = sms::asMESSAGEFORMAT_UNICODE_MULTIPART;
    message.Data = std::u16string(71, u'a');
    modem.On("AT+CMGS=153", {"\r\n> "});
    modem.On("AT+CMGS=27", {"\r\n+CMS ERROR: 500\r\n"});
    modem.Otherwise("\r\n+CMGS: 7\r\n\r\nOK\r\n");
    for (const char* command : {"ATE0", "AT+CMEE=1", "AT+CMGF=0"}) modem.On(command, {"\r\nOK\r\n"});
    EXPECT_EQ(Send(message), 30352);
    EXPECT_EQ(references, "");
    EXPECT_EQ(gsm.Reports().Count(), 0U);
}

TEST_F(Gsm, ABusyNetworkIsTriedThreeTimes) {
    struct Row {
        std::vector<std::string> answers;
        std::int32_t code;
        long attempts;
        std::uint64_t waited;
    };
    const std::string busy = "\r\n+CMS ERROR: 38\r\n";
    for (const Row& row : {Row{{busy}, 33160, 3, 4000}, Row{{busy, "\r\n+CMGS: 9\r\n\r\nOK\r\n"}, 0, 2, 2000},
                           Row{{"\r\n+CMS ERROR: 1\r\n"}, 30352, 1, 0}}) {
        modem.commands.clear();
        modem.On(kPdu, row.answers);
        const auto before = clock.Slept();
        EXPECT_EQ(Send(Message()), row.code);
        EXPECT_EQ(Count(kPdu), row.attempts);
        EXPECT_EQ(Count("AT+CMGS=14"), row.attempts);
        EXPECT_EQ(clock.Slept() - before, 500 + row.waited);
        EXPECT_EQ(references.empty(), row.code != 0);
    }
}

TEST_F(Gsm, ReportsAreRequestedWithTheLowestSupportedValues) {
    CSmsMessageX message = Message();
    message.RequestDeliveryStatus = true;
    const std::string pdu = "0021000B911316325476F800000161";
    modem.On(pdu, {"\r\n+CMGS: 17\r\n\r\nOK\r\n"});
    ASSERT_EQ(Send(message), 0);
    EXPECT_TRUE(Sent("AT+CNMI=1,0,0,2,1"));
    EXPECT_EQ(gsm.Reports().Query("17")->status, 1);
    for (const char* answer :
         {"\r\n+CNMI: (1,2),(0-3),(0,2),(0,1),(1)\r\n\r\nOK\r\n", "\r\n+CNMI: (1,2)\r\n\r\nOK\r\n",
          "\r\n+CNMI: (1),(0),2,(2),(1)\r\n\r\nOK\r\n", "\r\nERROR\r\n", "\r\n+CNMI: ,,,\r\n\r\nOK\r\n"}) {
        modem.On("AT+CNMI=?", {answer});
        modem.commands.clear();
        EXPECT_EQ(Send(message), 33151) << answer;
        EXPECT_FALSE(Sent("AT+CMGS=14"));
    }
}

TEST_F(Gsm, KeywordsChooseTheMode) {
    struct Row {
        const char* keywords;
        bool asks;
        bool text;
    };
    modem.On("AT+CMGS=\"+31612345678\"", {"\r\n> "});
    modem.On("hi", {"\r\n+CMGS: 5\r\n\r\nOK\r\n"});
    modem.On("AT+CMGS=15", {"\r\n> "});
    modem.On("0001000B911316325476F8000002E834", {"\r\n+CMGS: 5\r\n\r\nOK\r\n"});
    for (const Row& row :
         {Row{"", true, false}, Row{"ForceTextMode", false, true}, Row{"ForcePduMode", false, false},
          Row{"forcepdumode;forcetextmode", false, true}, Row{"SkipModeSetting", false, true}}) {
        gsm.SetAdvancedSettings(row.keywords);
        modem.commands.clear();
        EXPECT_EQ(Send(Message(u"hi")), 0) << row.keywords;
        EXPECT_EQ(Sent("AT+CMGF=?"), row.asks) << row.keywords;
        EXPECT_EQ(Sent("AT+CMGF=1"), row.text) << row.keywords;
        EXPECT_EQ(Sent("hi"), row.text) << row.keywords;
        EXPECT_EQ(references, "5");
    }
    gsm.SetAdvancedSettings("ForceTextMode");
    modem.On("AT+CMGS=\"12345\"", {"\r\n> "});
    for (const char* recipient : {"S12345", "A12345", "N12345", "G12345"}) {
        modem.commands.clear();
        CSmsMessageX message = Message(u"hi");
        message.Recipient = recipient;
        EXPECT_EQ(Send(message), 0) << recipient;
        EXPECT_TRUE(Sent("AT+CMGS=\"12345\"")) << recipient;
    }
}

TEST_F(Gsm, ATextIsNoCommand) {
    gsm.SetAdvancedSettings("ForceTextMode");
    modem.On("AT+CMGS=\"+31612345678\"", {"\r\n> "});
    modem.On("a AT+CMGD=1,4", {"\r\nOK\r\n"});
    ASSERT_EQ(Send(Message(u"a\x1a"
                           u"AT+CMGD=1,4\x1b")),
              0);
    EXPECT_EQ(modem.commands.back(), "a AT+CMGD=1,4 ");
    for (const char* recipient : {"dl:x\"\rAT+CMGD=1", "dl:x\"", "dl:\x1a", "\"1234",
                                  "\x1b"
                                  "1234"}) {
        modem.commands.clear();
        CSmsMessageX message = Message();
        message.Recipient = recipient;
        EXPECT_EQ(Send(message), 34031) << recipient;
        EXPECT_FALSE(Sent("AT+CMGF=1")) << recipient;
    }
}

// Also those of an acknowledgement that a modem adds after AT+CSMS=1.
TEST_F(Gsm, AllDigitsOfTheAnswerAreTheReference) {
    modem.On("AT+CMGS=\"+31612345678\"", {"\r\n> "});
    for (const char* keywords : {"ForcePduMode", "ForceTextMode"}) {
        for (const auto& [answer, reference] :
             {std::pair{"+CMGS: 7,\"07\"", "707"}, {"+CMGS:0", "0"}, {"+CMGS: 255 ", "255"}}) {
            gsm.SetAdvancedSettings(keywords);
            for (const char* data : {kPdu, "a"})
                modem.On(data, {"\r\n" + std::string(answer) + "\r\n\r\nOK\r\n"});
            EXPECT_EQ(Send(Message()), 0);
            EXPECT_EQ(references, reference) << keywords << answer;
        }
    }
}

TEST_F(Gsm, AnOkWithoutAReferenceIsASuccessWithoutAReport) {
    modem.On("AT+CMGS=\"+31612345678\"", {"\r\n> "});
    for (const char* keywords : {"ForcePduMode", "ForceTextMode"}) {
        for (const char* answer : {"\r\nOK\r\n", "\r\n+CMGS:\r\n\r\nOK\r\n"}) {
            gsm.SetAdvancedSettings(keywords);
            modem.On(kPdu, {answer});
            modem.On("a", {answer});
            EXPECT_EQ(Send(Message()), 0) << keywords << answer;
            EXPECT_EQ(references, "");
            EXPECT_EQ(gsm.Reports().Count(), 0U);
        }
    }
    gsm.SetAdvancedSettings("ForcePduMode");
    for (const char* command : {"ATE0", "AT+CMEE=1", "AT+CMGF=0"}) modem.On(command, {"\r\nOK\r\n"});
    for (const char* command : {"AT+CMGS=153", "AT+CMGS=33"}) modem.On(command, {"\r\n> "});
    CSmsMessageX message = Message(std::u16string(141, u'a'));
    message.Format = sms::asMESSAGEFORMAT_UNICODE_MULTIPART;
    modem.OtherwiseInTurn({"\r\n+CMGS: 7\r\n\r\nOK\r\n", "\r\nOK\r\n", "\r\n+CMGS: 9\r\n\r\nOK\r\n"});
    EXPECT_EQ(Send(message), 0);
    EXPECT_EQ(references, "7;9");
    EXPECT_EQ(gsm.Reports().Count(), 2U);
}

// A modem that comes to its prompt later would take the next commands for data.
TEST_F(Gsm, APromptThatDoesNotComeIsCalledOff) {
    modem.On("AT+CMGS=\"+31612345678\"", {""});
    struct Row {
        const char* answer;
        std::int32_t code;
        bool escape;
    };
    for (const char* keywords : {"ForcePduMode", "ForceTextMode"}) {
        for (const Row& row :
             {Row{"", 30350, true}, Row{"\r\nwhat\r\n", 30351, true}, Row{"\r\nOK\r\n", 30351, true},
              Row{"\r\n+CMS ERROR: 500\r\n", 30352, false}}) {
            gsm.SetAdvancedSettings(keywords);
            modem.On("AT+CMGS=14", {row.answer});
            modem.On("AT+CMGS=\"+31612345678\"", {row.answer});
            modem.written.clear();
            EXPECT_EQ(Send(Message()), row.code);
            EXPECT_EQ(modem.written.ends_with("\r\x1b"), row.escape) << row.answer;
            modem.Forget();
        }
    }
}

// Nor may what a modem still waits for when it did not hear the end of the data take the next call's
// commands.
TEST_F(Gsm, DataWithoutAResultAreCalledOff) {
    modem.On("AT+CMGS=\"+31612345678\"", {"\r\n> "});
    struct Row {
        const char* answer;
        std::int32_t code;
        bool escape;
    };
    for (const char* keywords : {"ForcePduMode", "ForceTextMode"}) {
        for (const Row& row : {Row{"", 30350, true}, Row{"\r\nwhat\r\n", 30351, true},
                               Row{"\r\n+CMS ERROR: 500\r\n", 30352, false},
                               Row{"\r\nERROR\r\n", 30352, false}, Row{"\r\nOK\r\n", 0, false}}) {
            gsm.SetAdvancedSettings(keywords);
            modem.On(kPdu, {row.answer});
            modem.On("a", {row.answer});
            modem.written.clear();
            EXPECT_EQ(Send(Message()), row.code);
            EXPECT_EQ(modem.written.ends_with("\x1a\x1b"), row.escape) << row.answer;
            EXPECT_EQ(modem.written.find('\x1b') != std::string::npos, row.escape) << row.answer;
            if (row.escape)
                EXPECT_GE(modem.quiet, 100U) << row.answer;  // closing drops what has not gone out
            modem.Forget();
        }
    }
}

// A prompt that came after it was called off is open still.
TEST_F(Gsm, ADialogueThatDoesNotBeginIsCalledOff) {
    struct Row {
        const char* command;
        const char* answer;
        std::int32_t code;
        bool escape;
    };
    for (const Row& row : {Row{"ATE0", "", 30350, true}, Row{"AT+CPMS=?", "\r\n> ", 30351, true},
                           Row{"AT+CPMS=?", "\r\nERROR\r\n", 30352, false}}) {
        ScriptedModem other(clock);
        other.On(row.command, {row.answer});
        CGsmModem fresh(other, clock);
        fresh.settings.device = "COM3";
        EXPECT_EQ(fresh.Send(Message(), references), row.code) << row.command;
        EXPECT_EQ(other.written.ends_with("\r\x1b"), row.escape) << row.command;
    }
}

// What the modem got is what counts, not only that it said "OK".
TEST_F(Gsm, LinesThatTheModemSendsByItselfChangeNothing) {
    CSmsMessageX message = Message(u"\u4e2d");
    message.Format = sms::asMESSAGEFORMAT_UNICODE_FLASH;
    message.RequestDeliveryStatus = true;
    std::vector<std::string> expected = kInitialise;
    expected.insert(expected.end(), {"AT+CMGF=0", "AT+CNMI=?", "AT+CNMI=1,0,0,2,1", "AT+CMGS=15",
                                     "0021000B911316325476F80018024E2D"});
    for (const std::string& line : {"^RSSI: 20", "+CMTI: \"SM\",9", "RING", "+CLIP: \"Brooke\",129"}) {
        const std::string between = "\r\n" + line + "\r\n";
        const std::string ok = between + "\r\nOK\r\n";
        modem.On("AT+CPMS=?", {between + "\r\n+CPMS: (\"SM\"),(\"SM\")\r\n" + ok});
        modem.On("AT+CMGF=?", {between + "\r\n+CMGF: (0,1)\r\n" + ok});
        modem.On("AT+CNMI=?", {between + "\r\n+CNMI: (1,2),(0-3),(0,2),(0-2),(1)\r\n" + ok});
        modem.On("AT+CMGS=15", {between + "\r\n> "});
        modem.On(expected.back(), {between + "\r\n+CMGS: 17\r\n" + ok});
        modem.Otherwise(ok);
        modem.commands.clear();
        const auto before = clock.Slept();
        EXPECT_EQ(Send(message), 0) << line;
        EXPECT_EQ(modem.commands, expected) << line;
        EXPECT_EQ(clock.Slept() - before, 500U) << line;
    }
}

constexpr const char* kHello = "00040B911316111111F10000621112406180000AE8329BFD4697D9EC37";
constexpr const char* kReport = "0006110B911316325476F8621112406191006211124061910000";

std::string Listed(int index, const std::string& pdu) {
    return "\r\n+CMGL: " + std::to_string(index) + ",1,,20\r\n" + pdu + "\r\n";
}

TEST_F(Gsm, ReceivesFromTheChosenStorages) {
    struct Row {
        std::int32_t choice;
        const char* offered;
        std::vector<std::string> read;
    };
    for (const Row& row :
         {Row{0, "(\"SM\",\"ME\",\"SR\")", {"SM", "ME"}}, Row{0, "(\"SM\",\"MT\",\"ME\")", {"MT"}},
          Row{1, "(\"SM\",\"ME\")", {"SM"}}, Row{2, "(\"SM\",\"ME\")", {"ME"}}, Row{3, "(\"SM\")", {"MT"}},
          Row{4, "(\"SM\")", {"SM"}}, Row{77, "(\"ME\")", {"ME"}}, Row{0, "()", {}}}) {
        modem.On("AT+CPMS=?", {std::string("\r\n+CPMS: ") + row.offered + "\r\n\r\nOK\r\n"});
        modem.commands.clear();
        gsm.settings.messageStorage = row.choice;
        EXPECT_EQ(gsm.Receive(), 0);
        std::vector<std::string> read;
        for (const std::string& command : modem.commands) {
            if (command.starts_with("AT+CPMS=\"")) read.push_back(command.substr(9, 2));
        }
        EXPECT_EQ(read, row.read) << row.choice << row.offered;
    }
}

TEST_F(Gsm, ReceivesMessagesAndReportsAmongNoise) {
    gsm.settings.messageStorage = 1;
    modem.On("AT+CMGL=1", {"\r\nRING\r\n" + Listed(3, kHello) + "\r\n+CMTI: \"SM\",9\r\n" +
                           "\r\n+CMGL: 4,1,,20\r\n\r\nRING\r\n" + std::string(kHello) + "\r\n\r\nOK\r\n"});
    modem.On("AT+CMGL=0", {Listed(5, kReport) + Listed(6, "0001000B911316325476F800000161") + "\r\nOK\r\n"});
    EXPECT_EQ(gsm.Receive(), 0);
    EXPECT_EQ(gsm.Received().Count(), 2U);
    CSmsMessageX message;
    ASSERT_EQ(gsm.Received().First(message), 0);
    EXPECT_EQ(message.Data, u"hellohello");
    EXPECT_EQ(message.Sender, "+31611111111");
    EXPECT_EQ(message.StorageLocation, "SM0003;");
    EXPECT_EQ(message.Time, "11/21/2026 04:16:08 AM");
    EXPECT_EQ(message.ReceivedTime, clock.Now());
    EXPECT_EQ(gsm.Reports().Query("17")->status, 2);
    EXPECT_EQ(modem.commands.back(), "AT+CMGD=5");
}

TEST_F(Gsm, ReceivedFieldsAreThoseOfThePdu) {
    gsm.settings.messageStorage = 1;
    struct Row {
        const char* pdu;
        std::int32_t format;
        std::u16string data;
        const char* smsc;
    };
    for (const Row& row : {
             Row{"00040B911316111111F10008621112406180000400E90041", 20, u"\u00e9A", ""},
             Row{"00040B911316111111F100046211124061800002FF41", 10, u"\u00ffA", ""},
             Row{"07911356131313F3040B911316111111F10000621112406180000161", 0, u"a", "+31653131313"},
         }) {
        modem.On("AT+CMGL=1", {Listed(1, row.pdu) + "\r\nOK\r\n"});
        ASSERT_EQ(gsm.Receive(), 0);
        CSmsMessageX message;
        ASSERT_EQ(gsm.Received().First(message), 0) << row.pdu;
        EXPECT_EQ(message.Format, row.format) << row.pdu;
        EXPECT_EQ(message.Data, row.data) << row.pdu;
        EXPECT_EQ(message.SMSC, row.smsc) << row.pdu;
    }
}

// What the listing gave counts; a deletion's failure is told when the listing had none.
TEST_F(Gsm, TheCodeIsThatOfTheListingBeforeThatOfTheDeletion) {
    gsm.settings.messageStorage = 1;
    const TemporaryFolder folder;
    gsm.SetLogFile(folder.File("log"));
    const std::string report = std::string(kReport).replace(std::string(kReport).size() - 2, 2, "41");
    struct Row {
        const char* end;
        const char* deletion;
        std::int32_t code;
    };
    for (const Row& row :
         {Row{"\r\n+CMS ERROR: 310\r\n", "\r\nOK\r\n", 33140}, Row{"\r\nOK\r\n", "\r\nERROR\r\n", 30352},
          Row{"\r\n+CMS ERROR: 310\r\n", "\r\nERROR\r\n", 33140}}) {
        modem.On("AT+CMGL=1", {Listed(5, report) + row.end});
        modem.On("AT+CMGD=5", {row.deletion});
        EXPECT_EQ(gsm.Receive(), row.code) << row.end << row.deletion;
        EXPECT_EQ(gsm.Reports().Query("17")->status, 5);
        EXPECT_EQ(gsm.Reports().Query("17")->statusCode, 0x41);
    }
    EXPECT_NE(TemporaryFolder::Read(folder.File("log")).find("Report received for message 17, status = 41\n"),
              std::string::npos);
}

TEST_F(Gsm, AListingThatBreaksOffHasACodeAndAnEnd) {
    gsm.settings.messageStorage = 1;
    struct Row {
        const char* reply;
        std::int32_t code;
        std::size_t received;
    };
    const std::string stalled = Listed(3, kHello) + "\r\n+CMGL: 4,1";
    for (const Row& row :
         {Row{stalled.c_str(), 30350, 1}, Row{"", 30350, 0}, Row{"\r\n+CMS ERROR: 310\r\n", 33140, 0}}) {
        modem.On("AT+CMGL=1", {row.reply});
        EXPECT_EQ(gsm.Receive(), row.code) << row.reply;
        EXPECT_EQ(gsm.Received().Count(), row.received);
    }
}

TEST_F(Gsm, WhatCanBeReadIsRead) {
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\",\"ME\")\r\n\r\nOK\r\n"});
    struct Row {
        const char* command;
        const char* reply;
        std::int32_t code;
        std::size_t received;
    };
    const std::string noEnd = Listed(1, kHello);
    for (const Row& row : {
             Row{"AT+CPMS=\"SM\"", "\r\nERROR\r\n", 33150, 2},
             Row{"AT+CPMS=\"ME\"", "\r\nERROR\r\n", 33150, 2},
             Row{"AT+CPMS=\"SM\"", "\r\n+CMS ERROR: 310\r\n", 33140, 2},
             Row{"AT+CMGL=1", noEnd.c_str(), 30350, 4},
             Row{"AT+CMGL=1", "", 30350, 2},
             Row{"AT+CMGL=1", "\r\n+CMS ERROR: 321\r\n", 0, 2},
             Row{"AT+CMGL=0", "\r\n+CMS ERROR: 321\r\n", 0, 2},
             Row{"AT+CMGL=0", "\r\n+CMS ERROR: 500\r\n", 30352, 2},
         }) {
        for (const char* storage : {"SM", "ME"})
            modem.On("AT+CPMS=\"" + std::string(storage) + "\"", {"\r\nOK\r\n"});
        modem.On("AT+CMGL=1", {Listed(1, kHello) + "\r\nOK\r\n"});
        modem.On("AT+CMGL=0", {Listed(2, kHello) + "\r\nOK\r\n"});
        modem.On(row.command, {row.reply});
        EXPECT_EQ(gsm.Receive(), row.code) << row.command << row.reply;
        EXPECT_EQ(gsm.Received().Count(), row.received) << row.command << row.reply;
    }
}

TEST_F(Gsm, APduThatWasCutStaysOnTheDevice) {
    gsm.settings.messageStorage = 1;
    const std::string report = kReport;
    const std::string hello = kHello;
    const std::string ucs2 = "00040B911316111111F10008621112406180000400E90041";
    const auto listed = [](const std::string& pdu, int octets) {
        return "\r\n+CMGL: 5,1,," + std::to_string(octets) + "\r\n" + pdu + "\r\n\r\nOK\r\n";
    };
    struct Row {
        const char* name;
        std::string reply;
        bool report, message;
        const char* line;  // of the log
    };
    const char* const kCut = "Message at memory location [5] was cut on its way, it stays on the device: [";
    const char* const kNoMessage =
        "Message at memory location [5] cannot be decoded, it stays on the device: [";
    for (const Row& row : {
             Row{"report", listed(report, 25), true, false, "Report received for message 17, status = 00"},
             Row{"report cut", listed(report.substr(0, 48), 25), false, false, kCut},
             Row{"report cut in an octet", listed(report.substr(0, 51), 25), false, false, kCut},
             Row{"report cut to its beginning", listed("00", 25), false, false, kCut},
             Row{"report as short as stated", listed(report.substr(0, 48), 23), true, false, "status = 00"},
             Row{"report of no stated length", "\r\n+CMGL: 5,1\r\n" + report.substr(0, 48) + "\r\nOK\r\n",
                 true, false, "status = 00"},
             Row{"report with more than stated", listed(report + "00", 20), true, false, "status = 00"},
             Row{"message", listed(hello, 28), false, true, "Receiving message"},
             Row{"message shorter than stated, but whole", listed(hello, 30), false, true,
                 "Receiving message"},
             Row{"message cut", listed(hello.substr(0, 46), 28), false, false, kCut},
             Row{"message without an end", "\r\n+CMGL: 5,1\r\n" + hello, false, false, kCut},
             Row{"UCS-2", listed(ucs2, 23), false, true, "Receiving message"},
             Row{"UCS-2 cut", listed(ucs2.substr(0, 46), 23), false, false, kCut},
             Row{"with a service centre", listed("07911356131313F3" + hello.substr(2, 40), 28), false, false,
                 kCut},
             Row{"of another kind", listed("0001000B911316325476F800000161", 14), false, false, kNoMessage},
         }) {
        const TemporaryFolder folder;
        gsm.Reports().Clear();
        gsm.SetLogFile(folder.File("log"));
        modem.On("AT+CMGL=1", {row.reply});
        modem.commands.clear();
        (void)gsm.Receive();
        EXPECT_EQ(gsm.Reports().Count(), row.report ? 1U : 0U) << row.name;
        EXPECT_EQ(gsm.Received().Count(), row.message ? 1U : 0U) << row.name;
        EXPECT_EQ(Sent("AT+CMGD=5"), row.report) << row.name;
        EXPECT_NE(TemporaryFolder::Read(folder.File("log")).find(row.line), std::string::npos) << row.name;
    }
}

TEST_F(Gsm, WhatIsHeldIsNotAddedAgain) {
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n"});
    const std::string part = "00440B911316111111F10000621112406180000905000301020";
    modem.On("AT+CMGL=1",
             {Listed(1, kHello) + Listed(2, part + "1C242") + Listed(3, part + "2C242") +
              Listed(4, "00440B911316111111F100006211124061800009050003020201C242") + "\r\nOK\r\n"});
    modem.On("AT+CMGL=0", {Listed(1, kHello) + "\r\nOK\r\n"});  // a modem that lists it twice
    clock.SetNow(1795234568);
    ASSERT_EQ(gsm.Receive(), 0);
    CSmsDeliveryReport report;
    for (int query = 0; query < 3; ++query) {
        EXPECT_EQ(gsm.QueryStatus("99", report), 33061);
        EXPECT_EQ(gsm.Received().Count(), 2U);   // one alone and one of two parts
        EXPECT_EQ(gsm.Received().Stored(), 3U);  // and a part that waits
        clock.Sleep(11'000);
    }
    EXPECT_EQ(gsm.DeleteAllMessages(0), 0);
    for (const char* command : {"AT+CMGD=1", "AT+CMGD=2", "AT+CMGD=3"}) EXPECT_EQ(Count(command), 1);
}

TEST_F(Gsm, AMissingStorageIsNamed) {
    gsm.settings.messageStorage = 2;
    modem.On("AT+CPMS=\"ME\"", {"\r\nERROR\r\n"});
    const TemporaryFolder folder;
    gsm.SetLogFile(folder.File("log"));
    gsm.SetActivityFile(folder.File("activity"));
    EXPECT_EQ(gsm.Receive(), 33150);
    for (const char* file : {"log", "activity"}) {
        EXPECT_NE(TemporaryFolder::Read(folder.File(file)).find("Invalid message storage specified"),
                  std::string::npos)
            << file;
    }
}

TEST_F(Gsm, DeletesByStorageAndKey) {
    EXPECT_EQ(gsm.DeleteMessage(0), 33060);
    EXPECT_EQ(gsm.DeleteAllMessages(1), 33060);
    modem.On("AT+CMGL=1", {Listed(3, kHello) + "\r\nOK\r\n"});
    ASSERT_EQ(gsm.Receive(), 0);
    ASSERT_EQ(gsm.Received().Count(), 2U);  // one in SM, one in ME
    EXPECT_EQ(gsm.DeleteMessage(2), 34050);
    EXPECT_EQ(gsm.DeleteMessage(-1), 34050);
    modem.commands.clear();
    EXPECT_EQ(gsm.DeleteMessage(1), 0);
    EXPECT_EQ(modem.commands, (std::vector<std::string>{"AT+CPMS=\"ME\"", "AT+CMGD=3"}));
    EXPECT_EQ(gsm.Received().Count(), 1U);
    modem.commands.clear();
    modem.On("AT+CMGD=3", {"\r\nERROR\r\n", "\r\nOK\r\n"});
    EXPECT_EQ(gsm.DeleteAllMessages(0), 30352);
    EXPECT_EQ(gsm.Received().Count(), 1U);
    EXPECT_EQ(gsm.DeleteAllMessages(0), 0);
    EXPECT_EQ(gsm.Received().Count(), 0U);
}

TEST_F(Gsm, DeletionGoesOnAfterAnErrorButNotAfterSilence) {
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n"});
    modem.On("AT+CMGL=1", {Listed(3, kHello) + Listed(4, kHello) + "\r\nOK\r\n"});
    for (const auto& [reply, code, second] : {std::tuple{"\r\nERROR\r\n", 30352, 1}, {"", 30350, 0}}) {
        ASSERT_EQ(gsm.Receive(), 0);
        ASSERT_EQ(gsm.Received().Count(), 2U);
        modem.On("AT+CMGD=3", {reply});
        modem.commands.clear();
        EXPECT_EQ(gsm.DeleteAllMessages(1), code);
        EXPECT_EQ(Count("AT+CMGD=4"), second) << code;
    }
}

TEST_F(Gsm, MmsNotificationsStayUnlessAllAreDeleted) {
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n"});
    modem.On("AT+CMGL=1", {Listed(3, kHello) + "\r\nOK\r\n"});
    for (const auto& [all, deleted] : {std::pair{0, 0}, {1, 1}, {-1, 1}, {2, 0}}) {
        ASSERT_EQ(gsm.Receive(), 0);
        CSmsMessageX notification;
        notification.Format = sms::asMESSAGEFORMAT_NOTIFICATION_MMS;
        notification.StorageLocation = "SM0007;";
        notification.SetSinglePart();
        gsm.Received().Add(notification);
        ASSERT_EQ(gsm.Received().Count(), 2U);
        modem.commands.clear();
        EXPECT_EQ(gsm.DeleteAllMessages(all), 0);
        EXPECT_EQ(Count("AT+CMGD=3"), 1);
        EXPECT_EQ(Count("AT+CMGD=7"), deleted);
    }
}

TEST_F(Gsm, FilesAreThoseOfTheWholeChannel) {
    const TemporaryFolder folder;
    gsm.SetLogFile(folder.File("log"));
    gsm.SetActivityFile(folder.File("activity"));
    ASSERT_EQ(Send(Message()), 0);
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    const std::string activity = TemporaryFolder::Read(folder.File("activity"));
    for (const char* line :
         {"OPEN DEVICE ", "WRITE STRING, string=[AT+CMGS=14]", "RECIPIENT ADDRESS : +31612345678",
          "MESSAGE FORMAT    : TEXT\n", "CLOSE DEVICE"})
        EXPECT_NE(log.find(line), std::string::npos) << line;
    for (const char* line : {"Open Device (COM3), Result = ", "Sending command [AT+CMGS=14]...", "Reply: [>]",
                             "Device Closed (COM3)"})
        EXPECT_NE(activity.find(line), std::string::npos) << line;
}

TEST_F(Gsm, IncompletePartsAreNotDeleted) {
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n"});
    modem.On("AT+CMGL=1", {Listed(1, kHello) +
                           Listed(2,
                                  "00440B911316111111F10000621112406180000905"
                                  "0003010201C242") +
                           "\r\nOK\r\n"});
    ASSERT_EQ(gsm.Receive(), 0);
    clock.SetNow(1795234568);
    ASSERT_EQ(gsm.Receive(), 0);
    EXPECT_EQ(gsm.Received().Count(), 1U);
    EXPECT_EQ(gsm.DeleteAllMessages(1), 0);
    EXPECT_TRUE(Sent("AT+CMGD=1"));
    EXPECT_FALSE(Sent("AT+CMGD=2"));
}

TEST_F(Gsm, QueriesReadReportsAtMostEveryTenSeconds) {
    CSmsDeliveryReport report;
    EXPECT_EQ(gsm.QueryStatus("", report), 34050);
    EXPECT_EQ(gsm.QueryStatus("17", report), 33061);
    int openings = modem.openings;
    clock.Sleep(10'000 - static_cast<std::uint32_t>(clock.Slept() % 1000));
    EXPECT_EQ(gsm.QueryStatus("17", report), 33061);
    EXPECT_EQ(modem.openings, openings);
    clock.Sleep(1000);
    EXPECT_EQ(gsm.QueryStatus("17", report), 33061);
    EXPECT_EQ(modem.openings, ++openings);
    clock.SetNow(clock.Now() - 3600);  // a clock set back
    EXPECT_EQ(gsm.QueryStatus("17", report), 33061);
    EXPECT_EQ(modem.openings, ++openings);
    gsm.settings.messageStorage = 4;
    modem.On("AT+CMGL=0", {Listed(5, kReport) + "\r\nOK\r\n", "\r\nOK\r\n"});
    clock.Sleep(11'000);
    ASSERT_EQ(gsm.QueryStatus("17", report), 0);
    EXPECT_TRUE(Sent("AT+CPMS=\"SR\""));
    EXPECT_EQ(report.status, 2);
    EXPECT_EQ(report.completedTime, 1795234579);
    EXPECT_EQ(gsm.QueryStatus("17", report), 33061);  // a final report leaves the store
    clock.Sleep(11'000);
    modem.On("ATE0", {""});
    EXPECT_EQ(gsm.QueryStatus("17", report), 30350);
}

// The modem counts its references to 255 only, so that an old report on the SIM may bear that of a new
// message.
TEST_F(Gsm, ReportsOfOtherMessagesAreKeptApartOnDemand) {
    struct Row {
        const char* recipient;
        std::int64_t sent;
        const char* setting;
        std::int32_t status;
        bool keptApart;
    };
    constexpr std::int64_t kDischarge = 1795234579;
    for (const Row& row : {
             Row{"+31687654321", kDischarge, "", 2, false},  // the reference alone decides
             Row{"+31687654321", kDischarge, "CheckReports=0", 2, false},
             Row{"+31687654321", kDischarge, "CheckReports=1", 1, true},
             Row{"+31612345678", kDischarge, "CheckReports=1", 2, false},
             Row{"+31612345678", kDischarge + 86'400, "CheckReports=1", 2, false},
             Row{"+31612345678", kDischarge + 86'401, "CheckReports=1", 1, true},
         }) {
        gsm.Clear();
        gsm.settings.device = "COM3";
        gsm.settings.messageStorage = 1;
        gsm.SetAdvancedSettings(row.setting);
        clock.SetNow(row.sent);
        gsm.Reports().RecordSent("17", ReportWanted::kYes, row.recipient);
        modem.On("AT+CMGL=0", {Listed(5, kReport) + "\r\nOK\r\n"});
        ASSERT_EQ(gsm.Receive(), 0);
        EXPECT_EQ(gsm.Reports().Query("17")->status, row.status) << row.recipient << row.setting;
        const auto kept = gsm.Reports().Query("17/31612345678");
        ASSERT_EQ(kept.has_value(), row.keptApart);
        if (kept) EXPECT_EQ(kept->status, 2);
        EXPECT_EQ(modem.commands.back(), "AT+CMGD=5");
    }
}

TEST_F(Gsm, RemembersWhomAMessageWasSentTo) {
    ASSERT_EQ(Send(Message()), 0);
    EXPECT_FALSE(gsm.Reports().IsOfAnother("17", "31612345678", 0));
    EXPECT_TRUE(gsm.Reports().IsOfAnother("17", "31687654321", 0));
}

TEST_F(Gsm, TheStatusOfSeveralPartsIsThatOfTheWhole) {
    struct Row {
        std::vector<std::int32_t> parts;
        std::int32_t whole;
        std::int32_t completed;
        bool removed;
    };
    for (const Row& row :
         {Row{{2, 2, 2}, 2, 102, true}, Row{{2, 1, 2}, 1, 0, false}, Row{{5, 1}, 1, 0, false},
          Row{{2, 5, 3}, 5, 102, true}, Row{{3, 2}, 3, 101, true}, Row{{11, 11}, 11, 101, true}}) {
        gsm.Reports().Clear();
        std::string joined;
        for (std::size_t i = 0; i < row.parts.size(); ++i) {
            gsm.Reports().Update(std::to_string(i), row.parts[i], static_cast<std::int32_t>(100 + i), 0);
            joined += (i > 0 ? ";" : "") + std::to_string(i);
        }
        CSmsDeliveryReport report;
        ASSERT_EQ(gsm.QueryStatus(joined, report), 0);
        EXPECT_EQ(report.status, row.whole) << joined;
        EXPECT_EQ(report.completedTime, row.completed) << joined;
        EXPECT_EQ(gsm.Reports().Count(), row.removed ? 0U : row.parts.size());
    }
}

TEST_F(Gsm, ClearForgetsAllButTheRejectedPin) {
    modem.On("AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"});
    modem.On("AT+CPIN=\"1111\"", {"\r\nERROR\r\n"});
    (void)gsm.EnterPin("1111");
    gsm.Reports().RecordSent("1", ReportWanted::kNo);
    gsm.Received().Add({});
    const TemporaryFolder folder;
    gsm.SetLogFile(folder.File("log"));
    gsm.SetActivityFile(folder.File("activity"));
    CSmsDeliveryReport report;
    (void)gsm.QueryStatus("1", report);
    gsm.Clear();
    EXPECT_EQ(gsm.settings.device, "");
    EXPECT_EQ(gsm.Reports().Count(), 0U);
    EXPECT_EQ(gsm.Received().Stored(), 0U);
    EXPECT_EQ(gsm.LogFile() + gsm.ActivityFile(), "");
    int openings = modem.openings;
    gsm.settings.device = "COM3";
    (void)gsm.QueryStatus("1", report);
    EXPECT_EQ(modem.openings, ++openings);  // when reports were read last is forgotten as well
    EXPECT_EQ(gsm.EnterPin("1111"), 33142);
    EXPECT_EQ(modem.openings, openings);
}

}  // namespace
