// What every channel does with a GSM device: the values it offers, its storages, the PIN and raw commands.
#include "gsm/AtValues.h"
#include "gsm/GsmDevice.h"
#include "support/ScriptedModem.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Lists in brackets, values parted by "|".
std::string Shown(std::string_view text) {
    std::string shown;
    const std::vector<AtField> fields = AtFields(text);
    for (const AtField& field : fields) {
        if (&field != &fields.front()) shown += "|";
        shown += field.isList ? "[" + Shown(field.text) + "]" : std::string(field.text);
    }
    return shown;
}

TEST(AtValues, FieldsAreListsNamesAndNumbers) {
    for (const auto& [text, shown] : {
             std::pair{R"(("SM","ME"),("SM","MT"),("SM"))", "[SM|ME]|[SM|MT]|[SM]"},
             {R"( ( "SM" , "ME" ) , ("SR") )", "[SM|ME]|[SR]"},
             {"(0-2),(0,1), (3)", "[0-2]|[0|1]|[3]"},
             {R"((1-16),"IP",,,(0-2),(0,1))", "[1-16]|IP|||[0-2]|[0|1]"},
             {R"(1,"IP","a,b(c","0.0.0.0",0,0)", "1|IP|a,b(c|0.0.0.0|0|0"},
             {R"(("a)b","(c"),2)", "[a)b|(c]|2"},
             {"((1),(2,3)),4", "[[1]|[2|3]]|4"},
             {"", ""},
             {" ", ""},
             {"()", "[]"},
             {",", "|"},
             {"1,", "1|"},
             {R"(("SM")", "[SM]"},
             {R"("IP)", "IP"},
             {"),(", ")|[]"},
         }) {
        EXPECT_EQ(Shown(text), shown) << text;
    }
}

TEST(AtValues, RangesHaveBothEnds) {
    for (const auto& [text, range] : {std::pair{"3", AtRange{3, 3}},
                                      {"0-2", AtRange{0, 2}},
                                      {" 1 - 16 ", AtRange{1, 16}},
                                      {"-", AtRange{0, 0}},
                                      {"4-", AtRange{4, 0}},
                                      {"99999999999", AtRange{2147483647, 2147483647}},
                                      {"IP", AtRange{0, -1}},
                                      {"", AtRange{0, -1}}}) {
        EXPECT_EQ(RangeOf(text), range) << text;
    }
}

TEST(AtValues, CnmiListsAreRangesOrValues) {
    for (const auto& [list, values] : {std::pair{"(0-2)", 7U},
                                       {"0,2", 5U},
                                       {"(0, 2, 3)", 13U},
                                       {"(0,2-3)", 12U},
                                       {"(3)", 8U},
                                       {"2-9", 12U},
                                       {"", 0U},
                                       {"7", 0U},
                                       {"1-0", 0U},
                                       {"x", 0U},
                                       {"-", 1U}}) {
        EXPECT_EQ(ParseCnmiList(list), values) << list;
    }
}

TEST(GsmStorages, AreChosenOrWhatTheDeviceOffers) {
    struct Row {
        std::int32_t choice;
        const char* offered;
        const char* messages;
        const char* messagesName;
        const char* reports;
        const char* reportsName;
    };
    for (const Row& row : {
             Row{0, "SM ME MT SR", "MT", "AUTO", "SR", "AUTO"},
             Row{0, "SM ME SR", "SM ME", "AUTO", "SR", "AUTO"},
             Row{0, "SM ME MT", "MT", "AUTO", "MT", "AUTO"},
             Row{0, "ME SM", "SM ME", "AUTO", "SM ME", "AUTO"},
             Row{0, "ME", "ME", "AUTO", "ME", "AUTO"},
             Row{0, "SR", "", "AUTO", "SR", "AUTO"},
             Row{0, "BM", "", "AUTO", "", "AUTO"},
             Row{1, "ME", "SM", "SIM", "SM", "SIM"},
             Row{2, "SM", "ME", "DEVICE", "ME", "DEVICE"},
             Row{3, "SM", "MT", "COMBINED", "MT", "COMBINED"},
             Row{4, "SM SR", "SM", "AUTO", "SR", "REPORTS"},
             Row{77, "SM ME", "SM ME", "AUTO", "SM ME", "AUTO"},
         }) {
        for (const auto& [use, read, name] :
             {std::tuple{StorageUse::kMessages, row.messages, row.messagesName},
              {StorageUse::kReports, row.reports, row.reportsName}}) {
            std::string names;
            for (const GsmStorage* storage : StoragesToRead(row.choice, use, StoragesNamed(row.offered)))
                names += (names.empty() ? "" : " ") + std::string(storage->name);
            EXPECT_EQ(names, read) << row.choice << row.offered;
            EXPECT_STREQ(StorageLogName(row.choice, use), name) << row.choice;
        }
    }
}

class Device : public testing::Test {
  protected:
    bool Sent(const std::string& command) const { return Count(command) > 0; }
    std::ptrdiff_t Count(const std::string& command) const {
        return std::ranges::count(modem.commands, command);
    }

    VirtualClock clock;
    ScriptedModem modem{clock};
    CGsmDevice device{modem, clock};
    const GsmSettings settings{.device = "COM3"};
};

TEST_F(Device, NotesTheStoragesOfTheFirstList) {
    constexpr unsigned kSim = 1, kDevice = 2, kCombined = 4, kReports = 8;
    const CGsmDevice::Session session(device, settings);
    for (const auto& [answer, offered] : {
             std::pair{R"(("SM","ME"),("MT"),("SR"))", kSim | kDevice},
             {R"(("MT","SR"), ("SM"))", kCombined | kReports},
             {R"("SM","ME")", kSim | kDevice},
             {"(SM,MT),(ME)", kSim | kCombined},
             {R"(("SM_P","BM"))", kSim},
             {R"(("sm","Mt"),("ME"))", kSim | kCombined},
             {"()", 0U},
         }) {
        modem.On("AT+CPMS=?", {std::string("\r\n+CPMS: ") + answer + "\r\n\r\nOK\r\n"});
        EXPECT_EQ(device.AskStorages(), 0);
        EXPECT_EQ(device.OfferedStorages(), offered) << answer;
    }
}

TEST_F(Device, TheFirstFailureOfTwoListingsCounts) {
    struct Row {
        const char* read;
        const char* unread;
        std::int32_t code;
    };
    const char* const kOk = "\r\nOK\r\n";
    const char* const kError = "\r\nERROR\r\n";
    const char* const kNoSim = "\r\n+CMS ERROR: 310\r\n";
    const char* const kEmpty = "\r\n+CMS ERROR: 321\r\n";
    for (const Row& row :
         {Row{kOk, kOk, 0}, Row{kNoSim, kOk, 33140}, Row{kOk, kNoSim, 33140}, Row{kError, kNoSim, 30352},
          Row{kNoSim, kError, 33140}, Row{kOk, "", 30350}, Row{"", kNoSim, 30350}, Row{kEmpty, kOk, 0},
          Row{kOk, kEmpty, 0}, Row{kEmpty, kEmpty, 0}, Row{kEmpty, kError, 30352}}) {
        modem.On("AT+CMGL=1", {row.read});
        modem.On("AT+CMGL=0", {row.unread});
        modem.commands.clear();
        const CGsmDevice::Session session(device, settings);
        EXPECT_EQ(device.List(kGsmStorages[0], [](auto&) {}), row.code) << row.read << row.unread;
        EXPECT_EQ(modem.commands,
                  (std::vector<std::string>{"AT+CMGF=0", "AT+CPMS=\"MT\"", "AT+CMGL=1", "AT+CMGL=0"}));
    }
}

TEST_F(Device, PinsAreEnteredOnce) {
    for (const char* pin : {"123", "123456789", "", "12a4", "12\"\r"})
        EXPECT_EQ(device.EnterPin(settings, pin), 33142) << pin;
    EXPECT_EQ(modem.openings, 0);
    modem.On("AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"});
    modem.On("AT+CPIN=\"1111\"", {"\r\n+CME ERROR: 16\r\n"});
    EXPECT_EQ(device.EnterPin(settings, "1111"), 33142);
    EXPECT_EQ(modem.commands, (std::vector<std::string>{"AT+CPIN?", "AT+CPIN=\"1111\""}));
    EXPECT_EQ(device.EnterPin(settings, "1111"), 33142);
    EXPECT_EQ(modem.openings, 1);
    EXPECT_EQ(modem.closings, 1);
}

TEST_F(Device, APinIsGivenToAWaitingSimOnly) {
    struct Row {
        const char* state;
        const char* answer;
        std::int32_t code;
        bool given, registers;
    };
    const char* const kOk = "\r\nOK\r\n";
    modem.On("AT+CREG?", {"\r\n+CREG: 0,1\r\n\r\nOK\r\n"});
    for (const Row& row : {Row{"SIM PIN", kOk, 0, true, true}, Row{"SIM PIN", "", 30350, true, false},
                           Row{"READY", kOk, 0, false, false}, Row{"SIM PUK", kOk, 0, false, false}}) {
        const TemporaryFolder folder;
        device.SetActivityFile(folder.File("activity"));
        modem.On("AT+CPIN?", {std::string("\r\n+CPIN: ") + row.state + "\r\n\r\nOK\r\n"});
        modem.On("AT+CPIN=\"12345678\"", {row.answer});
        modem.commands.clear();
        EXPECT_EQ(device.EnterPin(settings, "12345678"), row.code) << row.state << row.answer;
        EXPECT_EQ(Sent("AT+CPIN=\"12345678\""), row.given) << row.state;
        EXPECT_EQ(Sent("AT+CREG?"), row.registers) << row.state << row.answer;
        const std::string activity = TemporaryFolder::Read(folder.File("activity"));
        EXPECT_NE(activity.find("Checking PIN code..."), std::string::npos);
        EXPECT_EQ(activity.find("PIN code OK!") != std::string::npos, row.registers);
    }
}

// Over telephony nothing else drops what the modem has said before.
TEST_F(Device, WhatCameBeforeThePinQuestionIsNoAnswer) {
    modem.On("AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"});
    modem.On("AT+CREG?", {"\r\n+CREG: 0,1\r\n\r\nOK\r\n"});
    modem.Give("\r\n+CPIN: READY\r\n");
    EXPECT_EQ(device.EnterPin({.device = "A modem line"}, "1234"), 0);
    EXPECT_TRUE(Sent("AT+CPIN=\"1234\""));
}

TEST_F(Device, RegistrationIsWaitedFor) {
    struct Row {
        std::vector<std::string> answers;
        std::ptrdiff_t asked;
        bool logged;  // only where registration was not seen
    };
    modem.On("AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"});
    const std::string searching = "\r\n+CREG: 0,2\r\n\r\nOK\r\n";
    for (const Row& row :
         {Row{{"\r\n+CREG: 0,1\r\n\r\nOK\r\n"}, 1, false}, Row{{"\r\n+CREG: 0,5\r\n\r\nOK\r\n"}, 1, false},
          Row{{searching, searching, "\r\n+CREG: 0,5\r\n\r\nOK\r\n"}, 3, false}, Row{{searching}, 10, true},
          Row{{"\r\nERROR\r\n"}, 10, true}}) {
        const TemporaryFolder folder;
        device.SetLogFile(folder.File("log"));
        modem.On("AT+CREG?", row.answers);
        modem.commands.clear();
        const auto before = clock.Slept();
        EXPECT_EQ(device.EnterPin(settings, "1234"), 0);
        EXPECT_EQ(Count("AT+CREG?"), row.asked);
        EXPECT_EQ(clock.Slept() - before, 500U + 2 * 1000 + row.asked * 2000);
        const std::string log = TemporaryFolder::Read(folder.File("log"));
        EXPECT_EQ(log.find("Successfully registered with the GSM network.\n") != std::string::npos,
                  row.logged);
    }
}

TEST_F(Device, PinsAreMaskedInBothFiles) {
    const TemporaryFolder folder;
    device.SetLogFile(folder.File("log"));
    device.SetActivityFile(folder.File("activity"));
    modem.echo = true;
    modem.On("AT+CPIN?", {"\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"});
    modem.On("AT+CREG?", {"\r\n+CREG: 0,1\r\n\r\nOK\r\n"});
    EXPECT_EQ(device.EnterPin(settings, "2222"), 0);
    std::string response;
    EXPECT_EQ(device.SendCommand(settings, "at+cpin=\"2222\"", 1000, response), 0);
    EXPECT_EQ(response, "at+cpin=\"2222\"\r\nOK");  // as it came
    EXPECT_TRUE(Sent("AT+CPIN=\"2222\"") && Sent("at+cpin=\"2222\""));
    modem.On("AT+CPMS=?", {"\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n"});
    for (const char* command : {"AT+CPIN=2222", "AT+CMEE=1;+CPIN = \"2222\"", "AT+CLCK=\"SC\",1,\"2222\""}) {
        const CGsmDevice::Session session(device, settings);
        EXPECT_EQ(device.Initialise({.initString = command}), 0);
        EXPECT_TRUE(Sent(command));
    }
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    const std::string activity = TemporaryFolder::Read(folder.File("activity"));
    EXPECT_EQ(log.find("2222"), std::string::npos);
    EXPECT_EQ(activity.find("2222"), std::string::npos);
    for (const char* line :
         {"WRITE STRING, string=[AT+CPIN=\"****\"]", "WRITE STRING, string=[at+cpin=\"****\"]",
          "READ STRING,  string=[AT+CPIN=\"****\"]",
          "SEND COMMAND: [at+cpin=\"****\"], Response=[at+cpin=\"****\" <CRLF> OK], Result=[0 ("}) {
        EXPECT_NE(log.find(line), std::string::npos) << line;
    }
    EXPECT_NE(activity.find("Sending command [AT+CPIN=\"****\"]..."), std::string::npos);
}

TEST_F(Device, PinStatesHaveTheirCodes) {
    for (const auto& [reply, code] : {std::pair{"\r\n+CPIN: READY\r\n\r\nOK\r\n", 0},
                                      {"\r\nERROR\r\n", 33140},
                                      {"\r\n+CME ERROR: 10\r\n", 33140},
                                      {"", 30350}}) {
        modem.On("AT+CPIN?", {reply});
        EXPECT_EQ(device.EnterPin(settings, "1234"), code) << reply;
        EXPECT_FALSE(Sent("AT+CPIN=\"1234\""));
    }
}

TEST_F(Device, AMissingSimIsToldInTheChannelsWords) {
    const TemporaryFolder folder;
    modem.On("AT+CPIN?", {"\r\nERROR\r\n"});
    CGsmDevice other(modem, clock, {.noSim = "No card\n"});
    for (const auto& [user, words] :
         {std::pair{&device, "  Either the device is not a GSM device or the SIM card is not inserted !\n"},
          {&other, "  No card\n"}}) {
        user->SetLogFile(folder.File("log"));
        EXPECT_EQ(user->EnterPin(settings, "1234"), 33140);
        EXPECT_NE(TemporaryFolder::Read(folder.File("log")).find(words), std::string::npos) << words;
    }
}

TEST_F(Device, RawCommandsGiveTheWholeReply) {
    std::string response = "old";
    modem.On("ATI", {"\r\nMaker\r\nModel\r\n\r\nOK\r\n"});
    EXPECT_EQ(device.SendCommand(settings, "ATI", 2000, response), 0);
    EXPECT_EQ(response, "Maker\r\nModel\r\nOK");
    modem.On("ATS", {""});
    const auto before = clock.Slept();
    EXPECT_EQ(device.SendCommand(settings, "ATS", 2000, response), 30350);
    EXPECT_EQ(clock.Slept() - before, 2500U);
    EXPECT_EQ(response, "");
    EXPECT_EQ(modem.openings, modem.closings);
}

TEST_F(Device, ARawCommandWaitsAsLongAsItIsTold) {
    struct Row {
        std::int32_t timeout;
        std::int32_t code;
        std::uint64_t waited;
    };
    modem.OnInPieces("ATS", {{10'000'000, "\r\nOK\r\n"}});
    std::string response;
    for (const Row& row : {Row{2000, 30350, 2000}, Row{0, 30350, 0}, Row{-2, 30350, 0},
                           Row{INT32_MIN, 30350, 0}, Row{-1, 0, 10'000'000}}) {
        const auto before = clock.Slept();
        EXPECT_EQ(device.SendCommand(settings, "ATS", row.timeout, response), row.code) << row.timeout;
        EXPECT_EQ(clock.Slept() - before, 500 + row.waited) << row.timeout;
        clock.Sleep(20'000'000);
    }
}

TEST_F(Device, TheServiceCentreCannotEndItsCommand) {
    const CGsmDevice::Session session(device, settings);
    for (const char* smsc : {"+316\"", "+316\r", "+316\n", "+316\x1a", "+316\x1b", "+316\x7f"}) {
        EXPECT_EQ(device.Initialise({.smsc = smsc}), 33171) << smsc;
        EXPECT_TRUE(modem.commands.empty());
    }
}

}  // namespace
