// The paging dialogue with a scripted server, in virtual time.
#include "dialup/PagerProtocolSnpp.h"
#include "support/ScriptedPeer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using Peer = ScriptedPeer;
using Rows = std::vector<Peer::Row>;

Peer::Row Greets(const std::string& text = "220 SNPP Gateway Ready") {
    return {"", {Peer::Says(text + "\r\n")}};
}
Peer::Row Answers(const std::string& line, const std::string& text) {
    return {line, {Peer::Says(text + "\r\n")}};
}
Peer::Row Quits() { return Answers("QUIT", "221 OK, Goodbye"); }

struct Pager {
    Pager(Rows rows, std::int32_t timeout = 20'000)
        : peer(new Peer(clock, std::move(rows))), snpp(std::unique_ptr<Stream>(peer), clock) {
        snpp.settings.server = "pager.example";
        snpp.settings.serverTimeout = timeout;
    }
    std::int32_t Send(const std::string& recipient = "5551212",
                      const std::string& text = "Your network is down") {
        return snpp.Send({recipient, text}).Number();
    }

    VirtualClock clock;
    Peer* peer;
    CPagerProtocolSnpp snpp;
};

TEST(Snpp, DeliversAPage) {
    // The dialogue of RFC 1861, section 6.1, with the text sent as in section 6.2.
    Pager pager({Greets(), Answers("PAGE 5551212", "250 Pager ID Accepted"),
                 Answers("DATA", "354 Begin Input"), Answers("Your network is down\r\n.", "250 Message OK"),
                 Answers("SEND", "250 Message Sent"), Quits()});
    EXPECT_EQ(pager.Send(), 0);
    EXPECT_EQ(pager.snpp.ProviderResponse(), "Message Sent");
    EXPECT_EQ(pager.peer->heard, "PAGE 5551212\r\nDATA\r\nYour network is down\r\n.\r\nSEND\r\nQUIT\r\n");
    EXPECT_EQ(pager.clock.Slept(), 0u);
    EXPECT_FALSE(pager.peer->IsConnected());

    Pager again({Greets(), Answers("LOGI me secret", "250 Login accepted"), Answers("PAGE 5551212", "250 OK"),
                 Answers("DATA", "354 Begin Input"), Answers("x\r\n.", "250 OK"), Answers("SEND", "250 Sent"),
                 Quits()});
    again.snpp.settings.providerPassword = "me secret";
    EXPECT_EQ(again.Send("5551212", "x"), 0);
}

TEST(Snpp, ChecksBeforeItConnects) {
    const std::string huge(65'536, '1');
    struct Row {
        const char* recipient;
        const char* text;
        const char* server;
        std::int32_t port;
        std::int32_t code;
    };
    for (const Row& row : std::vector<Row>{
             {"", "x", "h", 444, 34031},
             {"55\r\nSEND", "x", "h", 444, 34031},
             {"x", "", "", 444, 34031},
             {"0123456789012345678901234567890123", "x", "h", 444, 34031},
             {huge.c_str(), "x", "h", 444, 34031},
             {"1", "", "", 444, 33603},
             {"1", "x", "", 444, 33600},
             {"1", "x", "h", 0, 22019},
             {"1", "x", "h", 65536, 22019},
         }) {
        SCOPED_TRACE(row.recipient);
        Pager pager({});
        pager.snpp.settings.server = row.server;
        pager.snpp.settings.serverPort = row.port;
        EXPECT_EQ(pager.Send(row.recipient, row.text), row.code);
        EXPECT_EQ(pager.peer->heard, "");
    }
    VirtualClock clock;
    CPagerProtocolSnpp none(nullptr, clock);
    EXPECT_EQ(none.Send({"", ""}).Number(), 22025);
}

TEST(Snpp, EveryStepCanFail) {
    const Rows steps{Greets(),
                     Answers("LOGI pw", "250 OK"),
                     Answers("PAGE 1", "250 OK"),
                     Answers("DATA", "354 Go"),
                     Answers("x\r\n.", "250 OK"),
                     Answers("SEND", "250 Sent")};
    struct Ending {
        const char* name;
        std::vector<Peer::Act> acts;
        std::int32_t code;
        bool quits;
        std::uint64_t time;
    };
    for (const Ending& ending : std::vector<Ending>{
             {"refused", {Peer::Says("550 Error, Invalid Pager ID\r\n")}, 33603, true, 0},
             {"unknown", {Peer::Says("500 Command Not Implemented\r\n")}, 33610, true, 0},
             {"no number", {Peer::Says("what?\r\n")}, 33610, true, 0},
             {"down", {Peer::Says("421 Too Many Errors, Goodbye\r\n"), Peer::Closes()}, 33610, false, 0},
             {"silent", {}, 33611, true, 5000},
             {"too late", {Peer::Says("250 OK\r\n", 5001)}, 33611, true, 5001},
             {"two octets", {Peer::Says("25")}, 33611, true, 6000},
             {"closed", {Peer::Closes()}, 10054, false, 0},
             {"closed within the number", {Peer::Says("2"), Peer::Closes()}, 10054, false, 0},
             {"reset", {Peer::Resets()}, 10053, false, 0},
         }) {
        for (std::size_t step = 0; step < steps.size(); ++step) {
            SCOPED_TRACE(std::string(ending.name) + " at " + steps[step].expects);
            Rows rows(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(step) + 1);
            rows.back().acts = ending.acts;
            if (ending.quits) rows.push_back(Quits());
            Pager pager(rows, 5000);
            pager.snpp.settings.providerPassword = "pw";
            EXPECT_EQ(pager.Send("1", "x"), ending.code);
            EXPECT_EQ(pager.clock.Slept(), ending.time);
            EXPECT_FALSE(pager.peer->IsConnected());
        }
    }
}

TEST(Snpp, TakesRepliesHoweverTheyCome) {
    struct Row {
        const char* name;
        std::vector<Peer::Act> acts;  // of SEND
        std::int32_t code;
        const char* response;
    };
    for (const Row& row : std::vector<Row>{
             {"octet by octet", Peer::Dribbles("250 Done\r\n", 10), 0, "earlier"},
             {"split behind the number", {Peer::Says("250"), Peer::Says(" Sent\r\n", 100)}, 0, "earlier"},
             {"several lines", {Peer::Says("250-One\r\n250 Two\r\n")}, 0, "One250 Two"},
             {"joined", {Peer::Says("250 One\r\n550 Two\r\n")}, 0, "One550 Two"},
             {"the rest comes later", {Peer::Says("250-One\r\n"), Peer::Says("550 Two\r\n")}, 0, "One"},
             {"number elsewhere", {Peer::Says("OK: 250\r\n")}, 0, "250"},
             {"four octets", {Peer::Says("250\n")}, 0, "earlier"},
             {"goodbye", {Peer::Says("221 Bye\r\n")}, 0, "earlier"},
             {"zeros", {Peer::Says(std::string("250 a\0b\r\n", 9))}, 0, "a"},
             {"a number beyond all", {Peer::Says("99999999999 x\r\n")}, 33610, "9999999 x"},
         }) {
        SCOPED_TRACE(row.name);
        Pager pager({Greets(),
                     Answers("PAGE 1", "250 OK"),
                     Answers("DATA", "354 Go"),
                     Answers("x\r\n.", "250 earlier"),
                     {"SEND", row.acts},
                     Quits()});
        EXPECT_EQ(pager.Send("1", "x"), row.code);
        EXPECT_EQ(std::string(pager.snpp.ProviderResponse().c_str()), row.response);  // a text ends at a zero
    }
}

TEST(Snpp, ATextThatIsRefusedBeforeItsEndIsRefused) {
    Pager pager({Greets(), Answers("PAGE 1", "250 OK"), Answers("DATA", "354 Go"),
                 Answers("x", "550 Message too long"), Answers(".", "500 Command unrecognized"), Quits()});
    EXPECT_EQ(pager.Send("1", "x"), 33603);
    EXPECT_TRUE(pager.snpp.ProviderResponse().starts_with("Message too long"));
}

TEST(Snpp, AFloodEndsAfterABoundedWhile) {
    Pager pager({Greets(),
                 {"PAGE 1", {Peer::Says("250 OK\r\n"), Peer::Floods(std::string(256, 'x'))}},
                 {"QUIT", {}}});
    EXPECT_EQ(pager.Send("1", "x"), 22025);
    EXPECT_LT(pager.clock.Slept(), 1000u);
}

TEST(Snpp, ATextCannotEndTheMessageOrSayACommand) {
    struct Row {
        std::string text;
        std::string line;
    };
    for (const Row& row : std::vector<Row>{{".", ". "},
                                           {"..", ".."},
                                           {"a\r\n.\r\nPAGE 2", "a  .  PAGE 2"},
                                           {"a\n.\n", "a . "},
                                           {std::string("a\0b", 3), "a b"},
                                           {std::string(70'000, 'y'), std::string(70'000, 'y')},
                                           {"\xE9\xFF\x01", "\xE9\xFF\x01"}}) {
        Pager pager({Greets(), Answers("PAGE 1", "250 OK"), Answers("DATA", "354 Go"),
                     Answers(row.line + "\r\n.", "250 OK"), Answers("SEND", "250 Sent"), Quits()});
        EXPECT_EQ(pager.Send("1", row.text), 0);
    }
    Pager pager({Greets(), Answers("LOGI a  SEND", "550 No"), Quits()});
    pager.snpp.settings.providerPassword = "a\r\nSEND";
    EXPECT_EQ(pager.Send("1", "x"), 33603);
    const std::string huge(65'536, 'p');
    Pager lengthy({Greets(), Answers("LOGI " + huge, "550 No"), Quits()});
    lengthy.snpp.settings.providerPassword = huge;
    EXPECT_EQ(lengthy.Send("1", "x"), 33603);
}

TEST(Snpp, WritesItsLog) {
    const TemporaryFolder folder;
    const auto log = [&](Pager& pager) {
        std::filesystem::remove(folder.File("log"));
        pager.snpp.SetLogFile(folder.File("log"));
        (void)pager.Send("1", "Text");
        std::string lines;
        std::istringstream text(TemporaryFolder::Read(folder.File("log")));
        for (std::string line; std::getline(text, line);)
            lines += line.substr(std::string("[22:13:20]  ").size()) + "\n";
        return lines;
    };
    for (const bool masks : {false, true}) {
        Pager pager({Greets("220 Ready"), Answers("LOGI pw", "250 OK"), Answers("PAGE 1", "250 OK"),
                     Answers("DATA", "354 Go"), Answers("Text\r\n.", "250 OK"), Answers("SEND", "250 Sent"),
                     Quits()});
        pager.snpp.settings.providerPassword = "pw";
        if (masks) pager.snpp.SetAdvancedSettings("MaskPasswords=1");
        EXPECT_EQ(log(pager),
                  "CONNECT [Velqar Build 5.3.10.1123 (x64)], Server=[pager.example:444], Result = [SUCCESS]\n"
                  "Response : [220 Ready <CRLF> ]\n"
                  "Sending Command: [LOGI " +
                      std::string(masks ? "****" : "pw") +
                      "]\n"
                      "Response : [250 OK <CRLF> ]\n"
                      "Sending Command: [PAGE 1]\n"
                      "Response : [250 OK <CRLF> ]\n"
                      "Sending Command: [DATA]\n"
                      "Response : [354 Go <CRLF> ]\n"
                      "Sending Command: [Text]\n"
                      "Sending Command: [.]\n"
                      "Response : [250 OK <CRLF> ]\n"
                      "Sending Command: [SEND]\n"
                      "Response : [250 Sent <CRLF> ]\n"
                      "Sending Command: [QUIT]\n"
                      "Response : [221 OK, Goodbye <CRLF> ]\n"
                      "DISCONNECT\n");
    }
    Pager failing({});
    failing.peer->connectTime = 20'000;
    EXPECT_EQ(
        log(failing),
        "CONNECT [Velqar Build 5.3.10.1123 (x64)], Server=[pager.example:444], Result = [10060 : A "
        "connection "
        "attempt failed because the connected party did not properly respond after a period of time, or "
        "established connection failed because connected host has failed to respond]\n");
    EXPECT_EQ(failing.clock.Slept(), 10'000u);
}

}  // namespace
