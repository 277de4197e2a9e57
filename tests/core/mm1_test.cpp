// The MM1 channel against a scripted modem, platform and MMS centre.
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "mms/Mm1Protocol.h"
#include "support/LogEntries.h"
#include "support/Octets.h"
#include "support/ScriptedHttp.h"
#include "support/ScriptedModem.h"
#include "support/ScriptedRas.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace {

using logmask::kActivity, logmask::kVerbatim;
constexpr unsigned kEvent = kActivity | kVerbatim;
const char* const kOk = "\r\nOK\r\n";
const char* const kUnitType = "application/vnd.wap.mms-message";
constexpr std::string_view kTaken = "8C81 98 'T1' 00 8D90 9280 93 'Ok' 00 8B 'MSG-1' 00";
constexpr std::string_view kMessage =
    "8C84 98 'r7' 00 8D90 8B 'mid@mmsc' 00 89 08 80 'a@b.c' 00 00 96 'Hi' 00 84 A3 01 01 04 83 'Text'";

HttpScript::Round Answer(std::string_view unit) {
    return {.body = OctetText(unit), .headers = {{http::Header::kContentType, kUnitType}}};
}

class Mm1 : public testing::Test {
  protected:
    Mm1() {
        modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\",\"ME\"),(\"SM\"),(\"SM\")\r\n\r\nOK\r\n"});
        modem.On("AT+CGDCONT=?", {"\r\n+CGDCONT: (1-16),\"IP\",,,(0-2),(0-4)\r\n\r\nOK\r\n"});
        modem.On("AT+CGDCONT?", {"\r\n+CGDCONT: 1,\"IP\",\"internet\",\"\",0,0\r\n\r\nOK\r\n"});
        ras.adapters = {{"LAN", 2, "192.168.0.5"}, {"WAN (PPP/SLIP)", 7, "10.64.0.9"}};
        engine.settings.device = "COM3";
        engine.settings.accessPoint = "mms.example.org";
        engine.settings.account = "user";
        engine.settings.password = "s3cret";
        engine.settings.gateway = "http://10.10.10.10:8080";
        engine.settings.mmsc = "http://mmsc.example.org:8002/mms";
        (void)message.AddRecipient("+31612345678", 0);
        message.AddSlide({0, 5, {{"image/jpeg", "<a.jpg>", "a.jpg", "", "JPEG", 0}}});
        NameFiles("");
    }

    void NameFiles(const std::string& before) {
        names = before;
        engine.SetLogFile(folder.File(names + "log"));
        engine.SetActivityFile(folder.File(names + "activity"));
    }
    // In this order. Others stand between those of the log, but only the modem's between those of the
    // activity.
    void ExpectEntries(const std::vector<Entry>& entries) const {
        EXPECT_EQ(FirstMissing(LogEntries(folder.File(names + "log")), TextsWith(entries, kVerbatim)), "");
        std::vector<std::string> activity = ActivityEntries(folder.File(names + "activity"));
        std::erase_if(activity, [](const std::string& entry) {
            return entry.starts_with("Sending command [") || entry.starts_with("Reply: [");
        });
        EXPECT_EQ(activity, TextsWith(entries, kActivity));
    }
    void OverExisting() { engine.SetAdvancedSettings("UseExistingConnection=1"); }
    std::int32_t Connected() {
        OverExisting();
        return engine.Connect().Number();
    }
    // From the next request on; the script leaves a round that it has played with the request after it.
    void Answers(std::vector<HttpScript::Round> rounds) {
        web.rounds.assign(rounds.begin(), rounds.end());
        if (web.requestsOpened > 0) web.rounds.emplace_front();
    }
    std::int32_t Send() { return engine.Send(&message).Number(); }
    std::int32_t Retrieve(const std::string& location) { return engine.Retrieve(location, fetched).Number(); }
    // Entries begin behind their time.
    bool HasEntry(const char* file, std::string_view entry) const {
        return TemporaryFolder::Read(folder.File(file)).find("]  " + std::string(entry)) != std::string::npos;
    }
    bool HasLogged(std::string_view line) const { return HasEntry("log", line); }

    TemporaryFolder folder;
    std::string names;  // of the files begin so
    VirtualClock clock;
    ScriptedModem modem{clock};
    RasScript ras{clock};
    HttpScript web{clock, {Answer(kTaken)}};
    CMm1Protocol engine{modem, clock, std::make_unique<ScriptedRas>(ras),
                        std::make_unique<ScriptedHttp>(web)};
    CMmsMessage message{clock};
    CMmsMessage fetched{clock};
};

// --- connecting

TEST_F(Mm1, ConnectsOverTheModem) {
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(modem.commands,
              (std::vector<std::string>{"AT+CMEE=1", "AT+CPMS=?", "AT+CMEE=1", "AT+CGDCONT=?", "AT+CGDCONT?",
                                        "AT+CGDCONT=2,\"IP\",\"mms.example.org\"", "AT+CGATT=1", "AT&W"}));
    EXPECT_EQ(modem.openings, 1);
    EXPECT_EQ(modem.closings, 1);
    EXPECT_EQ(ras.entryNames, std::vector<std::string>{"MMS on COM3"});
    ASSERT_EQ(ras.properties.size(), 1U);
    EXPECT_EQ(ras.properties[0].device, "COM3");
    EXPECT_EQ(ras.properties[0].phoneNumber, "*99***2#");
    ASSERT_EQ(ras.dialled.size(), 1U);
    EXPECT_EQ(ras.dialled[0].user + ":" + ras.dialled[0].password, "user:s3cret");
    ASSERT_EQ(ras.created.size(), 1U);
    EXPECT_EQ(ras.created[0].destination, ::inet_addr("10.10.10.10"));
    EXPECT_EQ(ras.created[0].interfaceIndex, 7U);
    ExpectEntries({
        {kVerbatim, "Velqar Build 5.3.10.1123 (x64), Device=[COM3]"},
        {kVerbatim, "Access Point Name     = [mms.example.org]"},
        {kVerbatim, "Access Point Account  = [user]"},
        {kVerbatim, "Access Point Password = [s3cret]"},
        {kVerbatim, "MMSC Address          = [http://mmsc.example.org:8002/mms]"},
        {kVerbatim, "WAP Proxy             = [http://10.10.10.10:8080]"},
        {kEvent, "MM1 Initializing modem..."},
        {kActivity, "Open Device (COM3), Result = Success"},
        {kEvent, "MM1 Connecting GSM/UMTS datanetwork..."},
        {kVerbatim, "CLOSE DEVICE"},
        {kActivity, "Device Closed (COM3)"},
        {kEvent, "Creating DUN entry 'MMS on COM3'"},
        {kVerbatim, "Dialstring used for DUN entry: *99***2#"},
        {kEvent, "Connecting to GPRS network (mms.example.org)..."},
        {kVerbatim, "Setting IP route to 10.10.10.10 via dialup connection, result=0"},
        {kEvent, "MM1 Successfully connected to data network."},
    });
}

// The modem is closed between the last two lines, or before the dialling.
TEST_F(Mm1, TellsWhereConnectingFailed) {
    modem.On("AT+CGDCONT=?", {"\r\nERROR\r\n"});
    EXPECT_EQ(engine.Connect(), 30352);
    ExpectEntries({
        {kEvent, "MM1 Initializing modem..."},
        {kActivity, "Open Device (COM3), Result = Success"},
        {kEvent, "MM1 Connecting GSM/UMTS datanetwork..."},
        {kEvent, "MM1 Error submitting message (Error response from modem)."},
        {kVerbatim, "CLOSE DEVICE"},
        {kActivity, "Device Closed (COM3)"},
        {kEvent, "CONNECT ERROR #30352 (Error response from modem)"},
    });

    modem.On("AT+CGDCONT=?", {"\r\n+CGDCONT: (1-16),\"IP\"\r\n\r\nOK\r\n"});
    ras.dialCode = 678;
    NameFiles("dial");
    EXPECT_EQ(engine.Connect(), 31678);
    ExpectEntries({
        {kEvent, "MM1 Initializing modem..."},
        {kActivity, "Open Device (COM3), Result = Success"},
        {kEvent, "MM1 Connecting GSM/UMTS datanetwork..."},
        {kVerbatim, "CLOSE DEVICE"},
        {kActivity, "Device Closed (COM3)"},
        {kEvent, "Creating DUN entry 'MMS on COM3'"},
        {kVerbatim, "Dialstring used for DUN entry: *99***2#"},
        {kEvent, "Connecting to GPRS network (mms.example.org)..."},
        {kEvent, "GPRS Connection failed, RAS error = 678"},
        {kEvent, "MM1 Error submitting message (There is no answer.)."},
        {kEvent, "CONNECT ERROR #31678 (There is no answer.)"},
    });
}

TEST_F(Mm1, SettingsAreCheckedBeforeAnythingIsOpened) {
    const std::string longName(101, 'a');
    struct Row {
        const char* mmsc;
        const char* accessPoint;
        const char* gateway;
        std::int32_t code, overExisting;
    };
    const char* const m = "http://m/mms";
    for (const Row& row : {
             Row{"", "", "", 33720, 33720},
             Row{m, "", "", 33721, 0},
             Row{m, "a\",\"b", "http://h:1", 33721, 0},
             Row{m, "apn\r", "http://h:1", 33721, 0},
             Row{m, longName.c_str(), "http://h:1", 33721, 0},
             Row{m, "apn", "", 33722, 0},
             Row{m, "apn", "10.10.10.10:8080", 33723, 33723},
             Row{m, "apn", "http://10.10.10.10", 33723, 33723},
             Row{m, "apn", "http:/10.10.10.10:80", 33723, 33723},
             Row{m, "apn", "http://10.10.10.10:0", 33723, 33723},
             Row{m, "apn", "http://10.10.10.10:8080/a", 33723, 33723},
             Row{m, "apn", "http://10.10.10.10:8080?a", 33723, 33723},
             Row{m, "apn", "ftp://10.10.10.10:8080", 33723, 33723},
             Row{m, "apn", "http://a b:8080", 33723, 33723},
             Row{m, "apn", "http://10.10.10.10:8080/", 0, 0},
             Row{m, "apn", "HTTPS://wap.example.org:443", 0, 0},
         }) {
        SCOPED_TRACE(row.gateway);
        engine.settings.mmsc = row.mmsc;
        engine.settings.accessPoint = row.accessPoint;
        engine.settings.gateway = row.gateway;
        modem.openings = 0;
        engine.SetAdvancedSettings("UseExistingConnection=0");
        EXPECT_EQ(engine.Connect(), row.code);
        EXPECT_EQ(modem.openings, row.code == 0 ? 1 : 0);
        EXPECT_EQ(engine.Disconnect(), 0);
        EXPECT_EQ(Connected(), row.overExisting);
    }
    EXPECT_TRUE(HasLogged("MM1 Error submitting message (Missing MMSC server address).\n"));
    EXPECT_TRUE(HasLogged("CONNECT ERROR #33720 (Missing MMSC server address)\n"));
}

TEST_F(Mm1, WhatTheModemRefusesEndsTheConnecting) {
    struct Row {
        const char* command;
        const char* answer;
        std::int32_t code;
    };
    const char* const set = "AT+CGDCONT=2,\"IP\",\"mms.example.org\"";
    for (const Row& row : {
             Row{"AT+CMEE=1", "", 30350},
             Row{"AT+CMEE=1", "\r\nERROR\r\n", 0},
             Row{"AT+CPMS=?", "", 30350},
             Row{"AT+CPMS=?", "\r\nERROR\r\n", 0},
             Row{"AT+CGDCONT=?", "\r\nERROR\r\n", 30352},
             Row{"AT+CGDCONT=?", "", 30350},
             Row{"AT+CGDCONT=?", kOk, 30351},
             Row{"AT+CGDCONT?", "\r\n+CME ERROR: 11\r\n", 33141},
             Row{"AT+CGDCONT?", "\r\n+CGDCONT: 1,\"IP\",\"a\"\r\n", 30351},
             Row{set, "\r\nERROR\r\n", 30352},
             Row{"AT+CGATT=1", "\r\n+CME ERROR: 10\r\n", 33140},
             Row{"AT+CGATT=1", "\r\n+CME ERROR: 30\r\n", 0},
             Row{"AT+CGATT=1", "", 0},
             Row{"AT&W", "\r\nERROR\r\n", 0},
         }) {
        SCOPED_TRACE(std::string(row.command) + row.answer);
        ScriptedModem spoilt = modem;
        spoilt.On(row.command, {row.answer});
        CMm1Protocol other(spoilt, clock, std::make_unique<ScriptedRas>(ras),
                           std::make_unique<ScriptedHttp>(web));
        other.settings = engine.settings;
        ras.dialled.clear();
        EXPECT_EQ(other.Connect(), row.code);
        EXPECT_EQ(ras.dialled.size(), row.code == 0 ? 1U : 0U);
        EXPECT_EQ(spoilt.closings, 1);
    }
    modem.openResult = result::PortOpenFailed;
    EXPECT_EQ(engine.Connect(), 30104);
}

TEST_F(Mm1, ASilentModemEndsInTime) {
    modem.Otherwise("");
    EXPECT_EQ(engine.Connect(), 30350);
    EXPECT_EQ(clock.Slept(), 5500U);
}

TEST_F(Mm1, AModemThatFallsSilentIsAskedNoMore) {
    modem.On("AT+CMEE=1", {kOk, ""});
    EXPECT_EQ(engine.Connect(), 30350);
    EXPECT_EQ(clock.Slept(), 2500U);
    EXPECT_EQ(modem.commands, (std::vector<std::string>{"AT+CMEE=1", "AT+CPMS=?", "AT+CMEE=1"}));
}

TEST_F(Mm1, ADeviceHasTimeToFindItsNetwork) {
    modem.OnInPieces("AT+CGATT=1", {{19'999, "\r\n+CME ERROR: 11\r\n"}});
    EXPECT_EQ(engine.Connect(), 33141);
    modem.OnInPieces("AT+CGATT=1", {{20'001, "\r\n+CME ERROR: 11\r\n"}});
    EXPECT_EQ(engine.Connect(), 0);
}

TEST_F(Mm1, FailuresOfTheDiallingHaveTheirCodes) {
    struct Row {
        std::uint32_t properties, get, dial;
        std::int32_t code;
        const char* line;
    };
    for (const Row& row : {
             Row{5, 0, 0, 33711, "Error creating DUN entry, RAS Error 5.\n"},
             Row{0, 623, 0, 31623, "GPRS Connection failed, RAS error = 623\n"},
             Row{0, 0, 600, 31600, "GPRS Connection failed, RAS error = 600\n"},
             Row{0, 0, 678, 31678, "CONNECT ERROR #31678 (There is no answer.)\n"},
             Row{0, 0, 805, 31805, "GPRS Connection failed, RAS error = 805\n"},
             Row{0, 0, 599, 33710, "GPRS Connection failed, RAS error = 599\n"},
             Row{0, 0, 806, 33710, "GPRS Connection failed, RAS error = 806\n"},
             Row{0, 0, 0xFFFFFFFF, 33710, "GPRS Connection failed, RAS error = -1\n"},
         }) {
        SCOPED_TRACE(row.line);
        ras.propertiesCode = row.properties;
        ras.getCode = row.get;
        ras.dialCode = row.dial;
        EXPECT_EQ(engine.Connect(), row.code);
        EXPECT_TRUE(HasLogged(row.line));
        EXPECT_EQ(Send(), 33710);
        EXPECT_TRUE(ras.created.empty());
    }
    // The handles that failed dialling gave were hung up.
    EXPECT_EQ(ras.hungUp.size(), 6U);
}

TEST_F(Mm1, ALinkThatNeverComesUpIsNoAnswer) {
    ras.states = {{0x1000, 0}};
    EXPECT_EQ(engine.Connect(), 31678);
    EXPECT_EQ(clock.Slept(), 20'500U);  // the port settles first
    EXPECT_EQ(ras.hungUp.size(), 1U);
    EXPECT_EQ(Send(), 33710);
}

TEST_F(Mm1, WithoutRemoteAccessNothingCanBeDialled) {
    ras.isComplete = false;
    EXPECT_EQ(engine.Connect(), 1020);
    EXPECT_EQ(modem.openings, 0);
    EXPECT_EQ(Send(), 1020);
    EXPECT_EQ(engine.Retrieve("http://m/1", fetched), 1020);
    EXPECT_EQ(engine.Disconnect(), 1020);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_EQ(engine.Disconnect(), 0);
}

TEST_F(Mm1, ARouteThatFailsIsNoFailure) {
    ras.routeCode = 5;
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_TRUE(HasLogged("Setting IP route to 10.10.10.10 via dialup connection, result=5\n"));
}

TEST_F(Mm1, ASecondConnectUsesALinkThatStandsOnly) {
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(ras.dialled.size(), 1U);
    // What is left of one that fell is hung up before the modem is opened, which it keeps.
    ras.states = {{0, 6}};
    modem.openResult = result::PortOpenFailed;
    EXPECT_EQ(engine.Connect(), 30104);
    EXPECT_EQ(ras.hungUp.size(), 1U);
    ras.states = {{ras::kConnected, 0}};
    modem.openResult = result::Success;
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(ras.dialled.size(), 2U);
}

TEST_F(Mm1, DisconnectEndsEitherConnection) {
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_EQ(ras.hungUp.size(), 1U);
    EXPECT_EQ(Send(), 33710);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_EQ(Send(), 33710);
    EXPECT_TRUE(HasLogged("MM1 Disconnecting...\n") && HasLogged("MM1 Disconnected.\n"));
}

TEST_F(Mm1, NothingOutlivesItsConnection) {
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(web.sessions.size(), 1U);
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(web.sessions.size(), 2U);
    engine.settings.gateway = "none";
    EXPECT_EQ(engine.Connect(), 33723);
    engine.settings.gateway = "";
    EXPECT_EQ(Send(), 33710);
    EXPECT_EQ(engine.ProviderResponse(), u"");
    EXPECT_EQ(engine.MessageId(), "");
}

TEST_F(Mm1, AnExistingConnectionNeedsNeitherModemNorDialling) {
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    Answers({Answer(kMessage), {.body = ""}});
    EXPECT_EQ(Retrieve("http://mmsc.example.org/1"), 0);
    EXPECT_EQ(engine.Disconnect(), 0);
    EXPECT_TRUE(HasLogged("MM1 Using the connection that this machine has...\n"));
    EXPECT_EQ(modem.openings, 0);
    EXPECT_EQ(ras.calls, std::vector<std::string>());
    EXPECT_EQ(web.sessions.front(), std::string(CKorHttp::kUserAgent) + " 10.10.10.10:8080");
}

TEST_F(Mm1, OnlyAnExistingConnectionGoesWithoutAProxy) {
    engine.settings.gateway = "";
    EXPECT_EQ(Connected(), 0);
    for (const char* gateway : {"", "http://10.10.10.10:8080", ""}) {
        engine.settings.gateway = gateway;
        EXPECT_EQ(Send(), 0);
        EXPECT_EQ(web.sessions.back(),
                  std::string(CKorHttp::kUserAgent) + (*gateway == '\0' ? " " : " 10.10.10.10:8080"));
    }
    web.asked.clear();
    engine.SetAdvancedSettings("UseExistingConnection=0");
    engine.settings.gateway = "http://10.10.10.10:8080";
    EXPECT_EQ(engine.Connect(), 0);
    engine.settings.gateway = "";
    EXPECT_EQ(Send(), 33722);
    EXPECT_EQ(Retrieve("http://mmsc.example.org/1"), 33722);
    EXPECT_TRUE(web.asked.empty());
}

// --- sending

TEST_F(Mm1, PostsTheUnitThroughTheGateway) {
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(Send(), 0);
    ASSERT_EQ(web.asked.size(), 1U);
    EXPECT_EQ(web.asked[0].line, "POST http://mmsc.example.org:8002/mms");
    EXPECT_EQ(web.asked[0].headers, "Content-Length: " + std::to_string(message.EncodedMessage.size()) +
                                        "\r\nContent-Type: application/vnd.wap.mms-message\r\n"
                                        "Accept: application/vnd.wap.mms-message\r\n"
                                        "Cache-Control:  No-Cache\r\nHost: mmsc.example.org\r\n");
    EXPECT_EQ(HexOf(web.asked[0].body), HexOf(message.EncodedMessage));
    EXPECT_TRUE(web.asked[0].body.starts_with("\x8C\x80"));
    EXPECT_EQ(message.Protocol, mms::asMMS_PROTOCOL_MM1);
    EXPECT_EQ(web.sessions, std::vector{std::string(CKorHttp::kUserAgent) + " 10.10.10.10:8080"});
    EXPECT_EQ(engine.MessageId(), "MSG-1");
    EXPECT_EQ(engine.ProviderResponse(), u"Ok");
}

TEST_F(Mm1, TellsOfASentUnit) {
    message.SetFrom("+31600000001");
    message.AddSlide({0, 5, {{"image/jpeg", "<b.jpg>", "b.jpg", "", std::string(5000, 'x'), 0}}});
    OverExisting();
    EXPECT_EQ(engine.Connect(), 0);
    NameFiles("sent");
    EXPECT_EQ(Send(), 0);
    std::vector<std::string> dumps = LogEntries(folder.File(names + "log"));
    std::erase_if(dumps, [](const std::string& entry) { return !entry.starts_with("Packet HEX Dump:\n\n"); });
    ASSERT_EQ(dumps.size(), 2U);
    // The first 2048 octets of the unit.
    EXPECT_NE(dumps[0].find("\n0000  8C 80 98 "), std::string::npos);
    EXPECT_EQ(dumps[0].substr(dumps[0].rfind('\n')),
              "\n07F0  78 78 78 78 78 78 78 78 78 78 78 78 78 78 78 78   xxxxxxxxxxxxxxxx");
    EXPECT_NE(dumps[1].find("\n0000  8C 81 98 54 31 00 8D 90 92 80 "), std::string::npos);
    ExpectEntries({
        {kEvent, "MM1 Submitting message..."},
        {kVerbatim, "Sender address: +31600000001/TYPE=PLMN"},
        {kVerbatim, "Maximum MMS size is set to 307200 bytes"},
        {kActivity, "Http Connect Result = [Success]"},
        {kVerbatim, dumps[0]},
        {kEvent, "Sending [m-send-req]..."},
        {kVerbatim, dumps[1]},
        {kEvent, "Receiving [m-send-conf]..."},
        {kVerbatim, "MMSC response code : [80]"},
        {kVerbatim, "MMSC response text : [Ok]"},
        {kVerbatim, "MMSC messageid     : [MSG-1]"},
        {kEvent, "MM1 Message successfully submitted."},
    });
}

TEST_F(Mm1, AnswersToAMessage) {
    struct Row {
        const char* name;
        std::string unit;
        std::int32_t code;
        std::u16string text = u"";
        const char* id = "";
    };
    std::vector<Row> rows{
        {"taken", std::string(kTaken), 0, u"Ok", "MSG-1"},
        {"refused in UTF-8", "8C81 8D90 9284 93 05 EA C3BC '!' 00", 33764, u"\u00FC!"},
        {"cut behind the status", "8C81 98 'T1' 00 8D90 9280 8B 'MSG", 0},
        {"cut before the status", "8C81 98 'T1' 00 8D", 33763},
        {"no status", "8C81 98 'T1' 00 8D90", 33761},
        {"a status of 1.1", "8C81 8D91 92E0", 33761},
        {"a status below all", "8C81 8D91 927F", 33763},
        {"nothing", "", 22407},
        {"another type", std::string(kMessage), 33302},
        {"no type", "98 'T1' 00 9280", 33302},
        {"one octet", "8C", 33302},
        {"a page", "'<html><body>Please pay</body></html>'", 33302},
        {"zeros", "0000000000", 33302},
    };
    constexpr std::int32_t kCodes[] = {0,     33761, 33762, 33763, 33764, 33765,
                                       33766, 33767, 33768, 33761, 33761};
    for (std::size_t status = 0; status < std::size(kCodes); ++status) {
        rows.push_back({"status", "8C81 8D90 92" + HexOf(std::string{static_cast<char>(0x80 + status)}),
                        kCodes[status]});
    }
    EXPECT_EQ(Connected(), 0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name + (" " + row.unit));
        Answers({Answer(kTaken)});
        EXPECT_EQ(Send(), 0);
        Answers({Answer(row.unit)});
        EXPECT_EQ(Send(), row.code);
        EXPECT_EQ(engine.ProviderResponse(), row.text);
        EXPECT_EQ(engine.MessageId(), row.id);
    }
    EXPECT_TRUE(HasLogged("SEND RESULT: ERROR 33302 (Unknown response received from provider)\n"));
}

// What comes behind the first 1024 octets is not even read.
TEST_F(Mm1, AnAnswerIsReadUpToItsLimit) {
    EXPECT_EQ(Connected(), 0);
    const std::string head = OctetText("8C81 8D90 9280 93 ");
    Answers({{.body = head + std::string(2'000'000, 'x')}});
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(engine.ProviderResponse(), u"");
    Answers({{.body = head + std::string(1024 - head.size() - 1, 'x') + '\0'}});
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(engine.ProviderResponse().size(), 1024 - head.size() - 1);
    Answers({{.body = std::string(2'000'000, '<')}});
    EXPECT_EQ(Send(), 33302);
}

TEST_F(Mm1, WhatCannotBeSentIsNotPosted) {
    EXPECT_EQ(Send(), 33710);
    EXPECT_EQ(engine.Send(nullptr), 33710);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(engine.Send(nullptr), 34141);
    CMmsMessage empty(clock);
    EXPECT_EQ(engine.Send(&empty), 34130);
    EXPECT_EQ(Send(), 0);
    const auto size = static_cast<std::int32_t>(message.EncodedMessage.size());
    engine.settings.sizeLimit = size - 1;
    EXPECT_EQ(Send(), 34133);
    engine.settings.sizeLimit = -1;
    EXPECT_EQ(Send(), 34133);
    EXPECT_EQ(engine.MessageId(), "");
    engine.settings.sizeLimit = size;
    EXPECT_EQ(Send(), 0);
    engine.settings.mmsc = "";
    EXPECT_EQ(Send(), 33720);
    engine.settings.mmsc = "ftp://m/mms";
    EXPECT_EQ(Send(), 22404);
    EXPECT_EQ(web.asked.size(), 2U);
    EXPECT_TRUE(HasLogged("Data size exceeds MMS size limit (" + std::to_string(size) + " bytes > " +
                          std::to_string(size - 1) + " bytes)\n"));
}

TEST_F(Mm1, FailuresOfTheRequestAreToldAsTheyAre) {
    EXPECT_EQ(Connected(), 0);
    for (const auto& [round, code] : {
             std::pair{HttpScript::Round{.status = 404}, 22416},
             {HttpScript::Round{.status = 500}, 22419},
             {HttpScript::Round{.sendError = http::kCannotConnect}, 22404},
             {HttpScript::Round{.receiveError = 12030}, 22407},
             {HttpScript::Round{.status = 407, .body = "<html>"}, 33302},
         }) {
        Answers({round});
        EXPECT_EQ(Send(), code);
    }
    web.loadError = 126;
    EXPECT_EQ(Send(), 22390);
}

TEST_F(Mm1, TheTimeOutIsOfWholeSeconds) {
    EXPECT_EQ(Connected(), 0);
    for (const auto& [timeout, slept] : {std::pair{60'000, 60'000U},
                                         {1, 1000U},
                                         {1000, 1000U},
                                         {1001, 2000U},
                                         {0, 60'000U},
                                         {-1, 60'000U},
                                         {INT32_MAX, 2'147'484'000U}}) {
        engine.settings.timeout = timeout;
        Answers({{.receiveTime = 0xFFFFFFFE}});
        const auto before = clock.Slept();
        EXPECT_NE(Send(), 0);
        EXPECT_EQ(clock.Slept() - before, slept) << timeout;
    }
}

// --- fetching

TEST_F(Mm1, FetchesAMessageAndSaysSo) {
    EXPECT_EQ(Connected(), 0);
    Answers({Answer(kMessage), {.status = 204}});
    EXPECT_EQ(Retrieve("http://mmsc.example.org/m?id=7"), 0);
    ASSERT_EQ(web.asked.size(), 2U);
    EXPECT_EQ(web.asked[0], (HttpScript::Asked{"GET http://mmsc.example.org:80/m?id=7",
                                               "Accept: application/vnd.wap.mms-message\r\n", ""}));
    EXPECT_EQ(web.asked[1].line, "POST http://mmsc.example.org:8002/mms");
    EXPECT_EQ(HexOf(web.asked[1].body), HexOf(OctetText("8C85 98 'r7' 00 8D90")));
    EXPECT_EQ(fetched.From, "a@b.c");
    EXPECT_EQ(fetched.Subject, u"Hi");
    ASSERT_NE(fetched.FirstSlide(), nullptr);
    EXPECT_EQ(fetched.Slides[0].parts[0].data, "Text");
    EXPECT_EQ(engine.MessageId(), "mid@mmsc");
    for (const char* line :
         {"Sending [WAP-GET]...\n", "Receiving [WAP-GET Reply]...\n", "HTTP RESPONSE CODE  : 200\n",
          "HTTP CONTENT-TYPE   : application/vnd.wap.mms-message\n", "Sending [m-acknowledge-ind]...\n",
          "MM1 Message successfully retrieved.\n"}) {
        EXPECT_TRUE(HasLogged(line)) << line;
    }
    EXPECT_TRUE(HasLogged("HTTP CONTENT-LENGTH : " + std::to_string(OctetText(kMessage).size()) + "\n"));
}

TEST_F(Mm1, AnswersToTheFetching) {
    struct Row {
        const char* name;
        std::string unit;
        std::int32_t code;
        bool hasMessage = false;
        std::size_t asked = 1;
        std::u16string text = u"";
    };
    const std::string whole(kMessage);
    for (const Row& row : {
             Row{"a message with a status", "9980" + whole, 0, true, 2},
             Row{"without a transaction, and no notification known", "8C84 8D90 84 83 'Text'", 0, true},
             Row{"cut within its part", "8C84 98 'r7' 00 8D90 84 A3 01 01 09 83 'Text'", 33763, true},
             Row{"without a body", "8C84 98 'r7' 00 8D90", 33763, true},
             Row{"gone", "8C84 8D91 99E2 9A 'Gone' 00", 33765, false, 1, u"Gone"},
             Row{"not found yet", "8C84 8D91 99C1", 33765},
             Row{"network", "8C84 8D91 99C2", 33766},
             Row{"failed for now", "8C84 8D91 99C0", 33761},
             Row{"failed", "8C84 8D91 99E0", 33761},
             Row{"denied", "8C84 8D91 99E1", 33762},
             Row{"unsupported", "8C84 8D91 99E3", 33768},
             Row{"a status that nobody knows", "8C84 8D91 99FF", 33761},
             Row{"an answer to a message", std::string(kTaken), 33302},
             Row{"a page", "'<!DOCTYPE html>'", 33302},
             Row{"nothing", "", 22407},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Connected(), 0);
        web.asked.clear();
        Answers({Answer(row.unit), {.body = ""}});
        fetched.Clear();
        EXPECT_EQ(Retrieve("http://m/1"), row.code);
        EXPECT_EQ(!fetched.EncodedMessage.empty(), row.hasMessage);
        EXPECT_EQ(web.asked.size(), row.asked);
        EXPECT_EQ(engine.ProviderResponse(), row.text);
    }
    EXPECT_TRUE(HasLogged("RETRIEVE RESULT: ERROR 33765 (MMSC response: message not found)\n"));
}

// A body of one part says nothing of its length: only the server does.
TEST_F(Mm1, AMessageThatCameShortStaysAtTheCentre) {
    EXPECT_EQ(Connected(), 0);
    for (const auto& [announced, code, asked] :
         {std::tuple{"4", 0, 2U}, {"5", 33763, 1U}, {"no number", 0, 2U}}) {
        web.asked.clear();
        HttpScript::Round answer = Answer("8C84 98 'r7' 00 8D90 84 83 'Text'");
        answer.headers[http::Header::kContentLength] =
            *announced == 'n' ? announced : std::to_string(answer.body.size() - 4 + std::stoul(announced));
        Answers({answer, {.body = ""}});
        EXPECT_EQ(Retrieve("http://m/1"), code);
        EXPECT_EQ(web.asked.size(), asked);
        EXPECT_FALSE(fetched.EncodedMessage.empty());
    }
    EXPECT_TRUE(HasLogged("HTTP RESPONSE DATA  : incomplete\n"));
}

TEST_F(Mm1, AnAnswerThatFailsChangesNothing) {
    EXPECT_EQ(Connected(), 0);
    for (const HttpScript::Round& round :
         {HttpScript::Round{.status = 500}, {.sendError = http::kCannotConnect}, {.body = "?"}}) {
        Answers({Answer(kMessage), round});
        EXPECT_EQ(Retrieve("http://m/1"), 0);
        EXPECT_EQ(engine.MessageId(), "mid@mmsc");
    }
    engine.settings.mmsc = "";
    Answers({Answer(kMessage)});
    EXPECT_EQ(Retrieve("http://m/1"), 0);
    EXPECT_TRUE(HasLogged("Sending [m-acknowledge-ind] failed: 33720 (Missing MMSC server address)\n"));
}

TEST_F(Mm1, OnlyWebAddressesAreAskedFor) {
    EXPECT_EQ(engine.Retrieve("http://m/1", fetched), 33710);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    web.asked.clear();
    const std::string longest = "http://m/" + std::string(2048 - 9, 'x');
    for (const std::string& location :
         {std::string(), std::string("file:///C:/secret.txt"), std::string("file:c:\\secret.txt"),
          std::string("ftp://m/1"), std::string("javascript:alert(1)"), std::string("\\\\server\\share"),
          std::string("mmsc/1"), std::string("http:"), std::string("http://"), std::string("http:/m/1"),
          std::string("http:///1"), std::string("http://user:pass@m/1"), std::string("http://m:70000/1"),
          std::string("http://m\r\nHost: x/1"), longest + "x", "http://m/" + std::string(65536, 'x')}) {
        SCOPED_TRACE(location.substr(0, 60));
        EXPECT_EQ(engine.Retrieve(location, fetched), 22021);
        EXPECT_EQ(engine.MessageId(), "");
        EXPECT_EQ(engine.ProviderResponse(), u"");
        EXPECT_TRUE(HasLogged("Content location is no HTTP URL, it is not asked for: [" +
                              OneLine(location.substr(0, 256)) + "]\n"));
    }
    EXPECT_TRUE(web.asked.empty());
    Answers({Answer(kMessage), {.body = ""}});
    EXPECT_EQ(engine.Retrieve(longest, fetched), 0);
    Answers({Answer(kMessage), {.body = ""}});
    EXPECT_EQ(engine.Retrieve("HTTPS://m/a b\r\nX: 1", fetched), 0);
    EXPECT_EQ(web.asked[2].line, "GET https://m:443/a%20b%0D%0AX:%201");
}

// The bound of what a centre answers to a unit is none of messages.
TEST_F(Mm1, LargeMessagesAreFetchedWhole) {
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    const std::string unit = OctetText("8C84 8D90 84 83") + std::string(12 << 20, 'x');
    Answers({{.body = unit}});
    EXPECT_EQ(Retrieve("http://m/1"), 0);
    EXPECT_EQ(fetched.EncodedMessage, unit);
    Answers({{.body = OctetText(kTaken) + std::string(5000, 'x')}});
    EXPECT_EQ(Send(), 0);
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    EXPECT_TRUE(HasLogged("HTTP CONTENT-LENGTH : " + std::to_string(unit.size()) + "\n"));
    EXPECT_LT(log.size(), 100'000U);
}

TEST_F(Mm1, KeepsItsConnectionUnlessToldOtherwise) {
    for (const auto& [setting, kept] :
         {std::pair{"", true}, {"HttpKeepAlive=1", true}, {"HttpKeepAlive=0", false}}) {
        engine.SetAdvancedSettings("UseExistingConnection=1\n" + std::string(setting));
        EXPECT_EQ(engine.Connect(), 0);
        EXPECT_EQ(Send(), 0);
        EXPECT_EQ(web.keptAlive, kept) << setting;
    }
}

// --- notifications

// A listing with PDUs that carry data to a port, each part of `count` if that is not 1.
std::string Deliver(int place, std::string_view unit, int part = 1, int count = 1,
                    const char* port = "0B84") {
    const std::string header = count == 1 ? "060504" + std::string(port) + "23F0"
                                          : "0B0504" + std::string(port) + "23F0000305" +
                                                HexOf(std::string{static_cast<char>(count)}) +
                                                HexOf(std::string{static_cast<char>(part)});
    const std::string data = header + HexOf(OctetText(unit));
    const std::string pdu = "440B911316325476F8000462112171000000" +
                            HexOf(std::string{static_cast<char>(data.size() / 2)}) + data;
    return "\r\n+CMGL: " + std::to_string(place) + ",0,," + std::to_string(pdu.size() / 2) + "\r\n00" + pdu +
           "\r\n";
}
constexpr const char* kPush = "00 06 01 BE ";
const std::string kNotification = std::string(kPush) +
                                  "8C82 98 'n1' 00 8D90 8A80 8E 02 7530 88 06 80 04 6553F100 "
                                  "83 'http://mmsc/n1' 00";
constexpr const char* kNotificationText =
    "M-NOTIFICATION-IND URL=http://mmsc/n1 ID=n1 FROM= SIZE=30000 EXPIRATION=1700000000";

std::string TextOf(const CSmsMessageX& message) { return {message.Data.begin(), message.Data.end()}; }

TEST_F(Mm1, ReadsTheNotificationsAndNothingElse) {
    const std::string second = std::string(kPush) + "8C82 98 'n2' 00 8D90 83 'http://mmsc/";
    modem.On("AT+CPMS=\"SM\"", {kOk});
    modem.On("AT+CMGL=1", {Deliver(1, kNotification) + Deliver(2, second, 1, 2) + kOk,
                           Deliver(3, "00 06 01 AE 'a WAP push'") +
                               Deliver(8, std::string(kPush) + "8C86 8D90 8B 'x' 00 9581") +
                               Deliver(9, std::string(kPush) + "8C82 98 'n9' 00 8D90 83 'http://m") +
                               Deliver(4, "'to a card reader'", 1, 1, "23F4") +
                               "\r\n+CMGL: 5,0,,23\r\n0004039121F3040041425364000000AABBCCDDEE\r\n" +
                               "\r\n+CMGL: 6,0,,25\r\n00060A0B911316325476F86211217100000062112171000000" +
                               "00\r\n" + kOk});
    modem.On("AT+CMGL=0", {Deliver(7, "'n2' 00", 2, 2) + kOk, kOk});
    std::size_t count = 0;
    EXPECT_EQ(engine.CountNotifications(count), 0);
    EXPECT_EQ(count, 2U);
    CSmsMessageX first;
    EXPECT_EQ(engine.Received().ByIndex(0, first), 0);
    EXPECT_EQ(TextOf(first), kNotificationText);
    EXPECT_EQ(first.Format, sms::asMESSAGEFORMAT_NOTIFICATION_MMS);
    EXPECT_EQ(first.Sender, "+31612345678");
    CSmsMessageX next;
    EXPECT_EQ(engine.Received().ByIndex(1, next), 0);
    EXPECT_EQ(TextOf(next).substr(0, 50), "M-NOTIFICATION-IND URL=http://mmsc/n2 ID=n2 FROM= ");
    EXPECT_EQ(modem.commands, (std::vector<std::string>{
                                  "AT+CMEE=1", "AT+CPMS=?", "AT+CMGF=0", "AT+CPMS=\"SM\"", "AT+CMGL=1",
                                  "AT+CMGL=0", "AT+CMGF=0", "AT+CPMS=\"ME\"", "AT+CMGL=1", "AT+CMGL=0"}));
    EXPECT_EQ(modem.openings, modem.closings);
    EXPECT_TRUE(HasLogged("RETRIEVE MESSAGES FROM STORAGE : [AUTO]\n"));
    EXPECT_TRUE(HasLogged("Receiving message at memory location [7]...\n"));
    EXPECT_TRUE(HasLogged("New MMS waiting: [http://mmsc/n1] at [1700000000]\n"));
}

TEST_F(Mm1, GoesByTheChosenStorage) {
    for (const auto& [storage, name, command] : {std::tuple{1, "SIM", "AT+CPMS=\"SM\""},
                                                 {2, "DEVICE", "AT+CPMS=\"ME\""},
                                                 {3, "COMBINED", "AT+CPMS=\"MT\""}}) {
        engine.settings.messageStorage = storage;
        modem.commands.clear();
        modem.On("AT+CMGL=1", {Deliver(1, kNotification) + kOk});
        CSmsMessageX first;
        EXPECT_EQ(engine.FirstNotification(first), 0);
        EXPECT_EQ(TextOf(first), kNotificationText);
        EXPECT_EQ(engine.Received().Next(first), 33060);
        EXPECT_EQ(modem.commands[3], command);
        EXPECT_TRUE(HasLogged("RETRIEVE MESSAGES FROM STORAGE : [" + std::string(name) + "]\n"));
    }
}

TEST_F(Mm1, AFailedReadingIsToldWhenThereIsNothingToGive) {
    CSmsMessageX first;
    std::size_t count = 7;
    EXPECT_EQ(engine.FirstNotification(first), 33060);
    for (const auto& [sim, device] : {std::pair{"\r\nERROR\r\n", kOk}, {kOk, "\r\nERROR\r\n"}}) {
        modem.On("AT+CPMS=\"SM\"", {sim});
        modem.On("AT+CPMS=\"ME\"", {device});
        EXPECT_EQ(engine.FirstNotification(first), 33150);
    }
    EXPECT_EQ(engine.CountNotifications(count), 33150);
    EXPECT_EQ(count, 0U);
    modem.On("AT+CMGL=1", {Deliver(1, kNotification) + kOk});
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(engine.CountNotifications(count), 33150);
    EXPECT_EQ(count, 1U);
    modem.On("AT+CPMS=?", {"\r\nERROR\r\n"});
    EXPECT_EQ(engine.FirstNotification(first), 30352);
    modem.openResult = result::PortOpenFailed;
    EXPECT_EQ(engine.FirstNotification(first), 30104);
}

TEST_F(Mm1, WhileTheLinkHasTheModemWhatWasReadBeforeCounts) {
    modem.On("AT+CMGL=1", {Deliver(1, kNotification) + kOk});
    CSmsMessageX first;
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(engine.Connect(), 0);
    modem.openResult = result::PortOpenFailed;
    std::size_t count = 0;
    EXPECT_EQ(engine.CountNotifications(count), 0);
    EXPECT_GE(count, 1U);
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(TextOf(first), kNotificationText);
    ras.states = {{0, 6}};  // the network has ended it
    EXPECT_EQ(engine.CountNotifications(count), 30104);
}

TEST_F(Mm1, ADeviceStaysOneLineOfTheLog) {
    engine.settings.device = "COM3\r\n[22:13:20]  forged";
    EXPECT_EQ(engine.Connect(), 0);
    const std::vector<std::string> entries = LogEntries(folder.File("log"));
    EXPECT_EQ(entries.front(), "Velqar Build 5.3.10.1123 (x64), Device=[COM3  [22:13:20]  forged]");
    EXPECT_EQ(std::ranges::count_if(entries, [](const auto& entry) { return entry.starts_with("forged"); }),
              0);
}

TEST_F(Mm1, WhatOthersSayStaysOneLineOfTheLog) {
    EXPECT_EQ(Connected(), 0);
    Answers({Answer("8C81 98 'T1' 00 8D90 9280 93 'Ok' 0D0A '[forged' 00 8B 'ID' 0D0A '[forged' 00")});
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(engine.MessageId(), "ID\r\n[forged");
    EXPECT_EQ(Retrieve("ftp://m\r\n[forged"), 22021);
    const std::string start(kPush);
    modem.On("AT+CMGL=1", {Deliver(1, start + "8C82 98 'n1' 00 8D90 83 'http://m' 0D0A '[forged' 00") + kOk});
    CSmsMessageX first;
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("log")).find("\n[forged"), std::string::npos);
}

// A message without a transaction of its own is answered in that of its notification.
TEST_F(Mm1, AKnownNotificationIsAnswered) {
    modem.On("AT+CMGL=1", {Deliver(1, kNotification) + kOk});
    CSmsMessageX first;
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(Connected(), 0);
    for (const auto& [location, unit, answer] :
         {std::tuple{"http://mmsc/n1", "8C84 8D90 84 83 'Text'", "8C83 98 'n1' 00 8D90 9581"},
          {"http://mmsc/n1", kMessage.data(), "8C85 98 'r7' 00 8D90"},
          {"http://mmsc/N1", "8C84 8D90 84 83 'Text'", ""}}) {
        web.asked.clear();
        Answers({Answer(unit), {.body = ""}});
        EXPECT_EQ(Retrieve(location), 0);
        EXPECT_EQ(web.asked.size(), *answer == '\0' ? 1U : 2U);
        EXPECT_EQ(HexOf(web.asked.back().body), HexOf(OctetText(answer)));
    }
    EXPECT_TRUE(HasLogged("Sending [m-notifyresp-ind]...\n"));
}

// A message is known by its latest notification; one that is on the device no more is forgotten.
TEST_F(Mm1, WhatIsReadAgainTakesThePlaceOfWhatWasRead) {
    std::string again = kNotification;
    again.replace(again.find("'n1'"), 4, "'n9'");
    EXPECT_EQ(Connected(), 0);
    for (const auto& [listing, answer] :
         {std::pair{Deliver(1, kNotification) + Deliver(2, again), "8C83 98 'n9' 00 8D90 9581"},
          {std::string(), ""}}) {
        modem.On("AT+CMGL=1", {listing + kOk});
        std::size_t count = 0;
        EXPECT_EQ(engine.CountNotifications(count), 0);
        web.asked.clear();
        Answers({Answer("8C84 8D90 84 83 'Text'"), {.body = ""}});
        EXPECT_EQ(Retrieve("http://mmsc/n1"), 0);
        EXPECT_EQ(HexOf(web.asked.back().body), HexOf(OctetText(answer)));
    }
}

// Reports come as pushes too; no message waits behind them.
TEST_F(Mm1, AReportIsNoMessageThatWaits) {
    modem.On("AT+CMGL=1", {Deliver(1, std::string(kPush) +
                                          "8C86 8D90 8B 'mid' 00 97 '+31612345678' 00 85 04 6553F100 9581") +
                               kOk,
                           kOk});
    std::size_t count = 0;
    EXPECT_EQ(engine.CountNotifications(count), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(HasLogged("New MMS waiting"));
}

// --- the rest of the object

TEST_F(Mm1, TheModemCanBeTalkedTo) {
    modem.On("AT+CPIN?", {"\r\nERROR\r\n"});
    EXPECT_EQ(engine.EnterPin("1234"), 33140);
    EXPECT_TRUE(HasLogged("SIM card not inserted !\n"));
    modem.On("ATI", {"\r\nModel\r\n\r\nOK\r\n"});
    std::string response;
    EXPECT_EQ(engine.SendCommand("ATI", 1000, response), 0);
    EXPECT_EQ(response, "Model\r\nOK");
}

TEST_F(Mm1, NoPasswordStandsInAMaskedLog) {
    for (const char* advanced : {"MaskPasswords=1", ""}) {
        engine.SetLogFile(folder.File(std::string("log") + advanced));
        engine.SetAdvancedSettings(advanced);
        std::string response;
        (void)engine.SendCommand("AT+CGAUTH=1,1,\"user\",\"s3cret\"", 100, response);
        engine.settings.mmsc = "http://m/mms?p=s3cret";
        EXPECT_EQ(engine.Connect(), 0);
        EXPECT_EQ(Send(), 0);
        EXPECT_EQ(engine.SendCommand("AT+CGAUTH=1,1,\"s3cret\"", 1000, response), 0);
        EXPECT_EQ(engine.Disconnect(), 0);
        const std::string log = TemporaryFolder::Read(folder.File(std::string("log") + advanced));
        EXPECT_EQ(log.find("s3cret") == std::string::npos, *advanced != '\0');
        EXPECT_EQ(log.find("Access Point Password = [****]") != std::string::npos, *advanced != '\0');
    }
}

TEST_F(Mm1, ClearPutsEverythingBack) {
    EXPECT_EQ(engine.Connect(), 0);
    EXPECT_EQ(Send(), 0);
    engine.Clear();
    EXPECT_EQ(ras.hungUp.size(), 1U);
    EXPECT_EQ(engine.settings.device, "Siemens AG WM USB Modem");
    EXPECT_EQ(engine.settings.mmsc + engine.settings.gateway + engine.settings.accessPoint, "");
    EXPECT_EQ(engine.settings.sizeLimit, 307200);
    EXPECT_EQ(engine.settings.timeout, 60000);
    EXPECT_EQ(engine.MessageId(), "");
    EXPECT_EQ(engine.ProviderResponse(), u"");
    EXPECT_EQ(Send(), 33710);
}

TEST_F(Mm1, ClearForgetsWhatWasReadAndSaid) {
    modem.On("AT+CMGL=1", {Deliver(1, kNotification) + kOk});
    CSmsMessageX first;
    EXPECT_EQ(engine.FirstNotification(first), 0);
    EXPECT_EQ(Connected(), 0);
    EXPECT_EQ(Send(), 0);
    const Mm1Settings settings = engine.settings;
    engine.Clear();
    EXPECT_EQ(engine.AdvancedSettings(), "");
    EXPECT_EQ(engine.Received().Count(), 0U);
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    const std::string activity = TemporaryFolder::Read(folder.File("activity"));
    engine.settings = settings;
    OverExisting();
    EXPECT_EQ(Send(), 33710);
    EXPECT_EQ(engine.Connect(), 0);
    web.asked.clear();
    Answers({Answer("8C84 8D90 84 83 'Text'")});
    EXPECT_EQ(Retrieve("http://mmsc/n1"), 0);
    EXPECT_EQ(web.asked.size(), 1U);
    EXPECT_EQ(web.sessions.size(), 2U);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("log")), log);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("activity")), activity);
}

TEST_F(Mm1, ProviderFilesHoldTheSettings) {
    const std::string file = folder.File("provider.ini");
    EXPECT_EQ(engine.SaveConfig(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file),
              "[Provider]\nProviderAPN=mms.example.org\nProviderAPNAccount=user\nProviderAPNPassword=s3cret\n"
              "ProviderWAPGateway=http://10.10.10.10:8080\nProviderMMSC=http://mmsc.example.org:8002/mms\n"
              "ProviderMessageSizeLimit=307200\n");
    TemporaryFolder::Write(file, "[Provider]\nProviderAPN=other\nProviderMessageSizeLimit=100000\n");
    EXPECT_EQ(engine.LoadConfig(file), 0);
    EXPECT_EQ(engine.settings.accessPoint, "other");
    EXPECT_EQ(engine.settings.sizeLimit, 100000);
    EXPECT_EQ(engine.settings.account, "user");
    EXPECT_EQ(engine.LoadConfig(folder.File("none.ini")), 33050);
    EXPECT_EQ(engine.SaveConfig(folder.File("none/provider.ini")), 33052);
    EXPECT_TRUE(HasLogged("Saving MMS settings to file [" + folder.File("none/provider.ini") +
                          "], result: ERROR #33052 ("));
}

}  // namespace
