// The MM4 channel: the mail that a message becomes, and its dialogue with servers of any kind, in virtual
// time.
#include "foundation/Base64.h"
#include "foundation/ComputerName.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "mms/MM4Body.h"
#include "mms/MmsProtocolMm4.h"
#include "mms/MmsSlide.h"
#include "mms/MmsVersions.h"
#include "support/LogEntries.h"
#include "support/ScriptedPeer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using Peer = ScriptedPeer;

void AddSlide(CMmsMessage& message, std::string_view name = "a.jpg", std::string data = "data") {
    CMmsSlide slide;
    slide.AddAttachmentData(name, std::move(data));
    message.AddSlide(slide.Slide());
}

TEST(Mm4Body, IsAMailOfTheDocumentedForm) {
    VirtualClock clock(1'762'943'405);
    CMmsMessage message(clock);
    message.SetFrom("+31600000001");
    message.Subject = u"A subject";
    message.Priority = mms::asMMS_PRIORITY_HIGH;
    message.RequestDeliveryReport = true;
    message.Settings.version = mms::asMMS_VERSION_6_0_0;
    ASSERT_EQ(message.AddRecipient("31612345678", 0), result::Success);
    ASSERT_EQ(message.AddRecipient("eve@example.org", 0), result::Success);
    ASSERT_EQ(message.AddRecipient("10.0.0.1", 1), result::Success);
    ASSERT_EQ(message.AddRecipient("bob@example.org", 2), result::Success);
    AddSlide(message);
    AddSlide(message, "Bild \xe4", "");
    message.Slides.back().parts.push_back({.contentType = "text/plain",
                                           .contentId = "<t.txt>",
                                           .contentLocation = "t.txt",
                                           .data = std::string("Gr\xc3\xbc\xc3\x9f", 6) + "e\0",
                                           .charset = 65001});
    message.Protocol = mms::asMMS_PROTOCOL_MM4;
    message.CustomSmil = "<smil/>";
    ASSERT_EQ(message.Encode(), result::Success);
    const std::string& id = message.TransactionId;
    const std::string line = "--" + message.Boundary + "\r\n";
    EXPECT_EQ(message.EncodedMessage,
              "X-Mms-3GPP-MMS-Version: 6.0.0\r\n"
              "X-Mms-Message-Type: MM4_forward.REQ\r\n"
              "X-Mms-Transaction-Id: " +
                  id + "\r\nX-Mms-Message-Id: " + id +
                  "\r\nX-Mms-Ack Request: No\r\n"
                  "X-Mms-Priority: High\r\n"
                  "X-Mms-Delivery-Report: Yes\r\n"
                  "X-Mms-Read-Reply: No\r\n"
                  "Message-ID: <" +
                  id +
                  ">\r\n"
                  "Date: Wed, 12 Nov 2025 10:30:05 -0000\r\n"
                  "Sender: +31600000001\r\n"
                  "From: +31600000001\r\n"
                  "Subject: A subject\r\n"
                  "To: 31612345678\r\n"
                  "To: eve@example.org\r\n"
                  "Cc: 10.0.0.1\r\n"
                  "Bcc: bob@example.org\r\n"
                  "Content-Type: multipart/related; start=\"<" +
                  id + ".smil>\"; type=\"application/smil\"; boundary=\"" + message.Boundary + "\"\r\n\r\n" +
                  line +
                  "Content-Type: application/smil\r\nContent-Transfer-Encoding: base64\r\nContent-ID: <" +
                  id + ".smil>\r\nContent-location: " + id + ".smil\r\n\r\nPHNtaWwvPg==\r\n" + line +
                  "Content-Type: image/jpeg\r\nContent-Transfer-Encoding: base64\r\nContent-ID: <a.jpg>\r\n"
                  "Content-location: a.jpg\r\n\r\nZGF0YQ==\r\n" +
                  line +
                  "Content-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                  "Content-ID: =?utf-8?B?PEJpbGQgw6Q+?=\r\n"
                  "Content-location: =?utf-8?B?QmlsZCDDpA==?=\r\n\r\n\r\n" +
                  line +
                  "Content-Type: text/plain; charset=\"utf-8\"\r\nContent-Transfer-Encoding: base64\r\n"
                  "Content-ID: <t.txt>\r\nContent-location: t.txt\r\n\r\nR3LDvMOfZQ==\r\n"
                  "--" +
                  message.Boundary + "--\r\n");
    EXPECT_EQ(message.SaveToFile(TemporaryFolder().File("m.mms"), 1), result::Success);
    EXPECT_EQ(message.EncodedMessage.front(), '\x8c');  // MM1, whatever the protocol
}

TEST(Mm4Body, NamesValuesByNumber) {
    for (const auto& [number, text] : std::vector<std::pair<std::int32_t, const char*>>{
             {0, "5.2.0"},
             {7, "5.9.0"},
             {8, "5.10.0"},
             {9, "5.11.0"},
             {10, "6.0.0"},
             {18, "6.8.0"},
             {19, "5.2.0"},
             {-1, "5.2.0"},
         }) {
        EXPECT_EQ(mms::VersionText(number), text) << number;
    }
    for (const auto& [priority, text] : std::vector<std::pair<std::int32_t, std::string>>{
             {0, "Low"}, {1, "Normal"}, {2, "High"}, {3, "Normal"}, {-1, "Normal"}}) {
        VirtualClock clock;
        CMmsMessage message;
        message.Priority = priority;
        std::string out;
        CMM4Body(message, clock, 0).Encode(out, "B");
        EXPECT_NE(out.find("\r\nX-Mms-Priority: " + text + "\r\n"), std::string::npos) << priority;
        EXPECT_NE(out.find("\r\nSender: unknown\r\nFrom: unknown\r\nSubject: \r\n"), std::string::npos);
    }
}

TEST(Mm4Body, NothingMakesALineOfItsOwn) {
    VirtualClock clock;
    CMmsMessage message;
    message.From = "a@b\r\n.\r\nBcc: x";
    message.Subject = std::u16string(u"s\n.\r\nQUIT\0", 10);
    message.TransactionId = "id\r\n";
    message.Recipients[0].Add("c@d\r\n.");
    message.Slides.push_back({.parts = {{.contentType = "image/jpeg\r\n.",
                                         .contentId = "<\r\n\r\n.>",
                                         .contentLocation = "\n.\n",
                                         .data = ".\r\n.\r\n"}}});
    std::string out;
    CMM4Body(message, clock, 0).Encode(out, "B");
    EXPECT_EQ(out.find("\r\n."), std::string::npos);
    EXPECT_EQ(out.find('\0'), std::string::npos);
    for (std::size_t at = 0; (at = out.find_first_of("\r\n", at)) != std::string::npos; at += 2) {
        ASSERT_EQ(out.substr(at, 2), "\r\n") << at;
    }
    EXPECT_EQ(out.find("\r\nQUIT"), std::string::npos);
    EXPECT_EQ(out.find("\r\nBcc"), std::string::npos);
}

TEST(Mm4Body, AsksForItsMemoryOnce) {
    VirtualClock clock;
    CMmsMessage message;
    AddSlide(message, std::string(300, '\xe4') + ".jpg", std::string(300'000, 'x'));
    for (int i = 0; i < 20; ++i) AddSlide(message, "b.jpg", std::string(57, 'x'));
    message.Recipients[0].Add("eve@example.org");
    std::string out;
    CMM4Body(message, clock, 0).Encode(out, "B");
    const char* const memory = out.data();
    const std::size_t room = out.capacity();
    CMM4Body(message, clock, 0).Encode(out, "B");
    EXPECT_EQ(out.data(), memory);
    EXPECT_EQ(out.capacity(), room);
    EXPECT_LT(out.size(), room);  // what grows beyond what was asked for doubles
    EXPECT_LT(room, 500'000U);
}

// What a server says to each command, when nothing goes wrong.
struct Step {
    std::string command;
    std::string reply;
};
const std::vector<Step>& Usual() {
    static const std::vector<Step> steps{
        {"", "220-here is\r\n220 a server\r\n"},
        {"HELO " + ComputerName(), "250 hello\r\n"},
        {"AUTH LOGIN", "334 VXNlcm5hbWU6\r\n"},
        {"YWNjb3VudA==", "334 UGFzc3dvcmQ6\r\n"},
        {"c2VjcmV0IQ==", "235 you are\r\n"},
        {"MAIL FROM: <31600000001@example.net>", "250 sender\r\n"},
        {"RCPT TO: <31612345678@example.net>", "250 recipient\r\n"},
        {"DATA", "354 go on\r\n"},
        {Peer::kUpToDot, "250-first\r\n250 last\r\n"},
    };
    return steps;
}
constexpr std::size_t kLogin = 2, kAccount = 3, kPassword = 4, kText = 8;

Peer::Row Farewell() { return {"QUIT", {Peer::Says("221 bye\r\n"), Peer::Closes()}}; }

class Mm4 : public testing::Test {
  protected:
    Mm4() {
        message.SetFrom("31600000001");
        (void)message.AddRecipient("31612345678", 0);
        AddSlide(message);
    }

    // A channel that is ready to send to a server of these rows.
    CMmsProtocolMm4& Channel(std::vector<Peer::Row> rows) {
        auto socket = std::make_unique<Peer>(clock, std::move(rows));
        peer = socket.get();
        channel = std::make_unique<CMmsProtocolMm4>(std::move(socket), clock);
        channel->settings = {
            .host = "mail.example.org", .account = "account", .password = "secret!", .domain = "example.net"};
        return *channel;
    }
    // The usual rows up to one in which something else happens.
    static std::vector<Peer::Row> Until(std::size_t step, std::vector<Peer::Act> acts, bool isQuitHeard) {
        std::vector<Peer::Row> rows;
        for (std::size_t i = 0; i < step; ++i)
            rows.push_back({Usual()[i].command, {Peer::Says(Usual()[i].reply)}});
        if (step < Usual().size()) rows.push_back({Usual()[step].command, std::move(acts)});
        if (isQuitHeard) rows.push_back(Farewell());
        return rows;
    }
    static std::vector<Peer::Row> All() { return Until(Usual().size(), {}, true); }

    VirtualClock clock;
    CMmsMessage message{clock};
    Peer* peer = nullptr;
    std::unique_ptr<CMmsProtocolMm4> channel;
};

TEST_F(Mm4, SendsAMessage) {
    ASSERT_EQ(Channel(All()).Send(&message), result::Success);
    EXPECT_EQ(channel->ProviderResponse(), "250-first\r\n250 last");
    EXPECT_EQ(clock.Ticks(), 0U);
    EXPECT_FALSE(peer->IsConnected());
    EXPECT_EQ(message.Protocol, mms::asMMS_PROTOCOL_MM4);
    // The mail as it stands, its dot, and nothing between that and QUIT.
    EXPECT_TRUE(peer->heard.ends_with("DATA\r\n" + message.EncodedMessage + "\r\n.\r\nQUIT\r\n"));
    // What a server said is of its message only.
    channel->settings.host.clear();
    EXPECT_EQ(channel->Send(&message), 131);
    EXPECT_EQ(channel->ProviderResponse(), "");
}

TEST_F(Mm4, EveryStepAndEveryFault) {
    constexpr std::int32_t kNoReply = 591, kHeloFailed = 101;
    struct Fault {
        const char* name;
        std::vector<Peer::Act> acts;
        std::int32_t code;
        std::uint32_t time;
        bool isQuitHeard;
    };
    const std::string large(2'000'000, 'x');
    std::string lines;
    while (lines.size() < 2'000'000) lines += "250-and more of this\r\n";
    const std::vector<Fault> faults{
        {"refusal", {Peer::Says("554-no\r\n554 never\r\n", 7)}, 554, 7, true},
        {"refusal in octets", Peer::Dribbles("554 no\r\n", 1), 554, 8, true},
        {"another success", {Peer::Says("299 well\r\n")}, 299, 0, true},
        {"no code", {Peer::Says("foo bar\r\n")}, kNoReply, 0, true},
        {"a code that is none", {Peer::Says("099 bar\r\n")}, kNoReply, 0, true},
        {"a code with a sign", {Peer::Says("+25 bar\r\n")}, kNoReply, 0, true},
        {"an empty line, and silence", {Peer::Says("\r\n")}, kNoReply, 3000, true},
        {"two digits, and silence", {Peer::Says("25\r\n")}, kNoReply, 3000, true},
        {"three letters, and silence", {Peer::Says("foo\r\n")}, kNoReply, 3000, true},
        {"a number alone", {Peer::Says("554\r\n")}, 554, 0, true},
        {"short lines before the last", {Peer::Says("554-no\r\n\r\nx\r\nno\r\n554 never\r\n")}, 554, 0, true},
        {"a word, and silence", {Peer::Says("hello\r\n")}, kNoReply, 3000, true},
        {"silence in mid-code", {Peer::Says("25")}, kNoReply, 3000, true},
        {"the end in mid-code", {Peer::Says("25"), Peer::Closes(5)}, kNoReply, 5, false},
        {"the end", {Peer::Closes()}, kNoReply, 0, false},
        {"a reset", {Peer::Resets(3)}, kNoReply, 3, false},
        {"a line of 2 MB", {Peer::Says(large)}, kNoReply, 0, true},
        {"a reply of 2 MB", {Peer::Says(lines)}, kNoReply, 0, true},
        {"a line for ever", {Peer::Floods(std::string(1000, 'x'))}, kNoReply, 0, true},
        {"lines for ever", {Peer::Floods("250-a\r\n", 2000)}, kNoReply, 60'000, true},
    };
    for (std::size_t step = 0; step < Usual().size(); ++step) {
        for (const Fault& fault : faults) {
            SCOPED_TRACE(std::to_string(step) + " " + fault.name);
            const std::uint32_t started = clock.Ticks();
            const ResultCode code = Channel(Until(step, fault.acts, fault.isQuitHeard)).Send(&message);
            EXPECT_EQ(code, step == 1 ? kHeloFailed : fault.code);
            // A flood fills the farewell's reply as well, which has less time.
            const bool lasts = fault.acts.front().kind == Peer::Act::Kind::kFlood && fault.time != 0;
            EXPECT_EQ(clock.Ticks() - started, fault.time + (lasts ? 3100U : 0U));
            EXPECT_FALSE(peer->IsConnected());
        }
    }
}

TEST_F(Mm4, SilenceHasItsTimeAfterEveryStep) {
    for (std::size_t step = 0; step < Usual().size(); ++step) {
        const std::uint32_t started = clock.Ticks();
        EXPECT_EQ(Channel(Until(step, {}, true)).Send(&message), step == 1 ? 101 : 591);
        const bool isLogin = step == kAccount || step == kPassword;
        EXPECT_EQ(clock.Ticks() - started, isLogin ? 23'000U : 3100U) << step;
        EXPECT_EQ(channel->ProviderResponse(), "");
    }
}

TEST_F(Mm4, RepliesInPiecesAndWhatNobodyAskedFor) {
    std::vector<Peer::Row> rows;
    for (const Step& step : Usual()) rows.push_back({step.command, Peer::Dribbles(step.reply, 1)});
    rows.push_back(Farewell());
    EXPECT_EQ(Channel(rows).Send(&message), result::Success);

    rows = All();
    for (Peer::Row& row : rows) {
        if (row.expects != "QUIT") row.acts.push_back(Peer::Says("550 for another\r\n"));
    }
    EXPECT_EQ(Channel(rows).Send(&message), result::Success);
    EXPECT_EQ(channel->ProviderResponse(), "250-first\r\n250 last");
}

// Replies are taken far beyond what a standard allows.
TEST_F(Mm4, LongRepliesAreTaken) {
    constexpr std::size_t kSender = 5;
    std::string lines;
    while (lines.size() < 64'000) lines += "250-and more of this\r\n";
    for (const std::string& reply : {"250 " + std::string(8186, 'x') + "\r\n", lines + "250 last\r\n"}) {
        std::vector<Peer::Row> rows = All();
        rows[kSender].acts = {Peer::Says(reply)};
        EXPECT_EQ(Channel(rows).Send(&message), result::Success) << reply.size();
    }
}

TEST_F(Mm4, ProvesItsAccount) {
    struct Row {
        const char* name;
        std::vector<Peer::Row> login;  // in place of the usual steps
        std::int32_t code;
    };
    const Step& account = Usual()[kAccount];
    const Step& password = Usual()[kPassword];
    for (const Row& row : std::vector<Row>{
             {"not known", {{"AUTH LOGIN", {Peer::Says("504 what?\r\n")}}}, 137},
             {"not known either", {{"AUTH LOGIN", {Peer::Says("502 what?\r\n")}}}, 502},
             {"wrong",
              {{"AUTH LOGIN", {Peer::Says("334 VXNlcm5hbWU6\r\n")}},
               {account.command, {Peer::Says("334 UGFzc3dvcmQ6\r\n", 19'999)}},
               {password.command, {Peer::Says("535 no\r\n", 19'999)}}},
              535},
             {"in the other order, in other letters",
              {{"AUTH LOGIN", {Peer::Says("334 cGFzc3dvcmQ6\r\n")}},
               {password.command, {Peer::Says("334 dXNlcm5hbWU6\r\n")}},
               {account.command, {Peer::Says("454 later\r\n")}}},
              454},
             {"something else",
              {{"AUTH LOGIN", {Peer::Says("334 Q29sb3VyOg==\r\n")}},
               {"*", {Peer::Says("501 as you wish\r\n")}}},
              501},
             {"no base64", {{"AUTH LOGIN", {Peer::Says("334 ?\r\n")}}, {"*", {Peer::Says("501\r\n")}}}, 501},
             {"in the last of several lines",
              {{"AUTH LOGIN", {Peer::Says("334-first\r\n334 VXNlcm5hbWU6\r\n")}},
               {account.command, {Peer::Says("535 no\r\n")}}},
              535},
             {"nothing", {{"AUTH LOGIN", {Peer::Says("334\r\n")}}, {"*", {Peer::Says("501\r\n")}}}, 501},
             {"for ever",
              [&] {
                  std::vector<Peer::Row> rows{{"AUTH LOGIN", {Peer::Says("334 VXNlcm5hbWU6\r\n")}}};
                  for (int i = 0; i < 8; ++i)
                      rows.push_back({account.command, {Peer::Says("334 VXNlcm5hbWU6\r\n")}});
                  return rows;
              }(),
              334},
         }) {
        SCOPED_TRACE(row.name);
        std::vector<Peer::Row> rows = Until(kLogin, {}, false);
        rows.pop_back();
        rows.insert(rows.end(), row.login.begin(), row.login.end());
        rows.push_back(Farewell());
        EXPECT_EQ(Channel(rows).Send(&message), row.code);
    }
}

TEST_F(Mm4, SendsWithoutProof) {
    std::vector<Peer::Row> rows = All();
    rows.erase(rows.begin() + kLogin, rows.begin() + kPassword + 1);
    Channel(rows).SetAdvancedSettings("SmtpAuthentication=0");
    EXPECT_EQ(channel->Send(&message), result::Success);
    Channel(rows).settings.account.clear();
    EXPECT_EQ(channel->Send(&message), result::Success);
    Channel(All()).SetAdvancedSettings("SmtpAuthentication=1");
    EXPECT_EQ(channel->Send(&message), result::Success);
    channel->Clear();
    EXPECT_EQ(channel->ProviderResponse(), "");
}

// Which addresses reach the server of those that the lists name.
TEST_F(Mm4, OneIndexRunsThroughTheLists) {
    struct Row {
        std::size_t to, cc, bcc;
        std::vector<std::string> reached;
    };
    for (const Row& row : std::vector<Row>{
             {2, 4, 0, {"to0", "to1", "cc3"}},
             {1, 1, 1, {"to0"}},
             {1, 4, 7, {"to0", "cc2", "cc3", "bcc5", "bcc6"}},
             {0, 2, 0, {"cc0", "cc1"}},
             {0, 0, 1, {"bcc0"}},
             {0, 1, 3, {"cc0", "bcc2"}},
             {3, 0, 5, {"to0", "to1", "to2", "bcc4"}},
         }) {
        message.ClearRecipients();
        const std::size_t counts[] = {row.to, row.cc, row.bcc};
        const char* const names[] = {"to", "cc", "bcc"};
        for (std::size_t list = 0; list < 3; ++list) {
            for (std::size_t i = 0; i < counts[list]; ++i) {
                const std::string address = names[list] + std::to_string(i) + "@example.org";
                ASSERT_EQ(message.AddRecipient(address, static_cast<std::int32_t>(list)), result::Success);
            }
        }
        std::vector<Peer::Row> rows = All();
        const auto place = rows.erase(rows.begin() + 6);
        std::vector<Peer::Row> recipients;
        for (const std::string& name : row.reached) {
            recipients.push_back({"RCPT TO: <" + name + "@example.org>", {Peer::Says("250 ok\r\n")}});
        }
        rows.insert(place, recipients.begin(), recipients.end());
        EXPECT_EQ(Channel(rows).Send(&message), result::Success);
    }
}

TEST_F(Mm4, AddressesOfEveryKind) {
    struct Row {
        std::string from, mailbox, recipient, rcpt;
    };
    for (const Row& row : {
             Row{"", "unknown@example.net", "31612345678", "31612345678@example.net"},
             Row{"+31600000001", "+31600000001@example.net", "10.0.0.1", "10.0.0.1@example.net"},
             Row{"me@host", "me@host", "eve@example.org", "eve@example.org"},
             Row{"J\xf6rg <j@host>", "j@host", "eve@example.org", "eve@example.org"},
             Row{"A <b@c> <d@host>", "d@host", "eve@example.org", "eve@example.org"},
             Row{"a@b> X=1", "a@b  X=1", "c@d> NOTIFY=NEVER", "c@d  NOTIFY=NEVER"},
             Row{"A <a@b> X=<1>", "1@example.net", "c<d@e", "c d@e"},
             Row{"A <a@b> X=1>", "a@b  X=1", "eve@example.org", "eve@example.org"},
             Row{"a\r\nDATA@b", "a  DATA@b", "eve@example.org", "eve@example.org"},
         }) {
        message.SetFrom(row.from);
        message.ClearRecipients();
        // A decoded message may hold what is refused here.
        if (message.AddRecipient(row.recipient, 0) != result::Success) {
            message.Recipients[0].Add(row.recipient);
        }
        std::vector<Peer::Row> rows = All();
        rows[5].expects = "MAIL FROM: <" + row.mailbox + ">";
        rows[6].expects = "RCPT TO: <" + row.rcpt + ">";
        EXPECT_EQ(Channel(rows).Send(&message), result::Success) << row.from;
    }
}

// 4000 octets of mail are 3000 of content.
TEST_F(Mm4, MeasuresTheMail) {
    message.Protocol = mms::asMMS_PROTOCOL_MM4;
    message.CustomSmil = "<smil/>";
    ASSERT_EQ(message.Encode(), result::Success);
    AddSlide(message, "b.jpg", std::string((3200 - message.EncodedMessage.size()) / 4 * 3 - 200, 'x'));
    ASSERT_EQ(message.Encode(), result::Success);
    message.Subject = std::u16string(4000 - message.EncodedMessage.size(), u's');
    for (const auto& [limit, code] : {std::pair{3000, 0}, {2999, 34133}, {0, 34133}, {-1, 34133}}) {
        Channel(code == 0 ? All() : std::vector<Peer::Row>()).SetMessageSizeLimit(limit);
        EXPECT_EQ(channel->Send(&message), code) << limit;
        EXPECT_EQ(message.EncodedMessage.size(), 4000U);
    }
    for (const auto& [limit, held] : {std::pair{500'000, 350'000}, {350'001, 350'000}, {349'999, 349'999}}) {
        channel->SetMessageSizeLimit(limit);
        EXPECT_EQ(channel->MessageSizeLimit(), held);
    }
}

TEST_F(Mm4, RefusesWhatCannotBeSent) {
    EXPECT_EQ(Channel({}).Send(nullptr), 34141);
    for (const auto& [port, code] : {std::pair{465, 138}, {0, 22019}, {-1, 22019}, {65'536, 22019}}) {
        Channel({}).settings.port = port;
        EXPECT_EQ(channel->Send(&message), code) << port;
    }
    for (const std::int32_t port : {1, 65'535}) {
        Channel(All()).settings.port = port;
        EXPECT_EQ(channel->Send(&message), result::Success) << port;
    }
    Channel({}).settings.host.clear();
    channel->settings.port = 465;
    EXPECT_EQ(channel->Send(&message), 131);
    for (const auto& [outcome, code] : {std::pair{tcp::kConnectTimedOut, 10060}, {11001, 22025}}) {
        Channel({});
        peer->connectOutcome = outcome;
        EXPECT_EQ(channel->Send(&message), code);
    }
    Channel({});
    peer->connectTime = 10'001;
    EXPECT_EQ(channel->Send(&message), 10060);
    EXPECT_EQ(clock.Ticks(), 10'000U);
    message.ClearRecipients();
    EXPECT_EQ(Channel({}).Send(&message), 34130);
}

TEST_F(Mm4, AServerThatStopsReadingEndsTheText) {
    std::vector<Peer::Row> rows = Until(kText, {}, false);
    rows.pop_back();
    std::size_t taken = 0;
    for (const Peer::Row& row : rows) taken += row.expects.empty() ? 0 : row.expects.size() + 2;
    Channel(rows);
    peer->room = taken;
    EXPECT_EQ(channel->Send(&message), 591);
    EXPECT_EQ(clock.Ticks(), 6000U);  // the text's 3 s, and those of QUIT
    EXPECT_TRUE(peer->heard.ends_with("DATA\r\n"));
    EXPECT_FALSE(peer->IsConnected());
}

// The format goes with the message, whose mail is the same in each.
TEST_F(Mm4, TheFormatGoesWithTheMessage) {
    std::string mail;
    for (const std::int32_t format : {0, 1, 2, -1}) {
        Channel(All()).settings.format = format;
        ASSERT_EQ(channel->Send(&message), result::Success);
        EXPECT_EQ(message.Settings.variation, format);
        std::string heard = peer->heard;
        ReplaceAll(heard, message.TransactionId, "ID");
        ReplaceAll(heard, message.Boundary, "BOUNDARY");
        if (format == 0) mail = heard;
        EXPECT_EQ(heard, mail) << format;
    }
}

TEST(SmtpSession, NoLineOfAMailIsTheLast) {
    VirtualClock clock;
    CKorBase log("Test", clock);
    struct Row {
        std::string mail, said;
    };
    for (const Row& row : {
             Row{"a\r\n", "a\r\n\r\n.\r\n"},
             Row{".\r\n", "..\r\n\r\n.\r\n"},
             Row{"a\r\n.\r\nQUIT\r\n", "a\r\n..\r\nQUIT\r\n\r\n.\r\n"},
             Row{"a\r\n..b\r\n.c", "a\r\n...b\r\n..c\r\n.\r\n"},
         }) {
        Peer peer(
            clock,
            {{"", {}}, {"DATA", {Peer::Says("354 go\r\n")}}, {Peer::kUpToDot, {Peer::Says("250 ok\r\n")}}});
        ASSERT_EQ(peer.Connect("host", 25, 1000), tcp::kSuccess);
        EXPECT_EQ(SmtpSession(peer, log).Data(row.mail), result::Success);
        EXPECT_EQ(peer.heard, "DATA\r\n" + row.said);
    }
}

// What counts is that octets go out. A mail of the largest message has about 29 times 16 KiB.
TEST(SmtpSession, AServerThatReadsSlowlyGetsTheText) {
    constexpr std::uint32_t kEvery = 2900;  // ms
    constexpr std::size_t kRound = 16'384;
    const std::string firstLine(102, 'x');
    const std::string_view ends = "\r\n\r\n.\r\n";
    const std::string mail =
        firstLine + "\r\n" + std::string(29 * kRound - firstLine.size() - ends.size(), 'x');
    struct Row {
        const char* name;
        std::size_t mostTaken;  // octets at a time
        std::string taken;
        std::int32_t code;
        std::uint32_t rounds;
    };
    for (const Row& row : {
             Row{"16 KiB at a time", kRound, Peer::kUpToDot, 0, 1 + 29},
             // "DATA", and then 5 minutes.
             Row{"one octet at a time", 1, firstLine, 591, 6 + 104},
         }) {
        SCOPED_TRACE(row.name);
        VirtualClock clock;
        CKorBase log("Test", clock);
        Peer peer(clock,
                  {{"", {}}, {"DATA", {Peer::Says("354 go\r\n")}}, {row.taken, {Peer::Says("250 ok\r\n")}}});
        ASSERT_EQ(peer.Connect("host", 25, 1000), tcp::kSuccess);
        peer.writeTime = kEvery;
        peer.mostTaken = row.mostTaken;
        EXPECT_EQ(SmtpSession(peer, log).Data(mail), row.code);
        EXPECT_EQ(clock.Ticks(), row.rounds * kEvery);
    }
}

TEST(SmtpSession, LogsWhatIsShorterThan1024) {
    const TemporaryFolder folder;
    VirtualClock clock;
    CKorBase log("Test", clock);
    log.SetLogFile(folder.File("log.txt"));
    for (const std::size_t size : {1023U, 1024U}) {
        const std::string sender(size - std::string_view("MAIL FROM: <>").size(), 'a');
        const std::string mail(size - std::string_view("\r\n.\r\n").size(), 'b');
        const std::string account(size / 4 * 3, 'c');  // 1020 or 1024 characters in base64
        const std::string answer = base64::Encode(account);
        Peer peer(clock, {{"", {}},
                          {"AUTH LOGIN", {Peer::Says("334 VXNlcm5hbWU6\r\n")}},
                          {answer, {Peer::Says("235 you are\r\n")}},
                          {"MAIL FROM: <" + sender + ">", {Peer::Says("250 ok\r\n")}},
                          {"DATA", {Peer::Says("354 go\r\n")}},
                          {Peer::kUpToDot, {Peer::Says("250 ok\r\n")}}});
        ASSERT_EQ(peer.Connect("host", 25, 1000), tcp::kSuccess);
        SmtpSession session(peer, log);
        EXPECT_EQ(session.Login(account, ""), result::Success);
        EXPECT_EQ(session.From(sender), result::Success);
        EXPECT_EQ(session.Data(mail), result::Success);
        const std::string text = TemporaryFolder::Read(folder.File("log.txt"));
        for (const std::string& said : {answer, "MAIL FROM: <" + sender + ">", mail}) {
            EXPECT_EQ(text.find("COMMAND : " + said) != std::string::npos, size == 1023) << said;
        }
        EXPECT_EQ(Split(text, "COMMAND : <MESSAGE DATA>\n").size() - 1, size == 1023 ? 0U : 3U);
    }
}

TEST_F(Mm4, WritesItsLog) {
    const TemporaryFolder folder;
    const std::string file = folder.File("log.txt");
    const std::string activity = folder.File("activity.txt");
    Channel(All()).SetLogFile(file);
    channel->SetActivityFile(activity);
    channel->SetAdvancedSettings("MaskPasswords=1");
    ASSERT_EQ(channel->Send(&message), result::Success);
    using logmask::kActivity, logmask::kLog, logmask::kVerbatim;
    constexpr unsigned kBoth = kLog | kActivity;
    const std::vector<Entry> entries{
        {kActivity, "MM4 Submitting message..."},
        {kVerbatim, "Maximum MMS size is set to 350000 bytes"},
        {kActivity, "MM4 Connecting server (mail.example.org)..."},
        {kLog, std::string(118, '-')},
        {kLog, "CONNECT [Velqar Build 5.3.10.1123 (x64)], Server=[mail.example.org:25], Result=[Success]"},
        {kActivity, "CONNECT Server=[mail.example.org:25], Result=[Success]"},
        {kBoth, "RESPONSE: 220-here is"},
        {kBoth, "RESPONSE: 220 a server"},
        {kBoth, "COMMAND : HELO " + ComputerName()},
        {kBoth, "RESPONSE: 250 hello"},
        {kBoth, "COMMAND : AUTH LOGIN"},
        {kBoth, "RESPONSE: 334 VXNlcm5hbWU6"},
        {kBoth, "COMMAND : YWNjb3VudA=="},
        {kBoth, "RESPONSE: 334 UGFzc3dvcmQ6"},
        {kBoth, "COMMAND : ****"},
        {kBoth, "RESPONSE: 235 you are"},
        {kActivity, "MM4 Submitting message..."},
        {kBoth, "COMMAND : MAIL FROM: <31600000001@example.net>"},
        {kBoth, "RESPONSE: 250 sender"},
        {kBoth, "COMMAND : RCPT TO: <31612345678@example.net>"},
        {kBoth, "RESPONSE: 250 recipient"},
        {kBoth, "COMMAND : DATA"},
        {kBoth, "RESPONSE: 354 go on"},
        {kBoth, "COMMAND : <MESSAGE DATA>"},
        {kBoth, "RESPONSE: 250-first"},
        {kBoth, "RESPONSE: 250 last"},
        {kBoth, "COMMAND : QUIT"},
        {kBoth, "RESPONSE: 221 bye"},
        {kBoth, "DISCONNECTED"},
        {kActivity, "MM4 Message successfully submitted."},
    };
    EXPECT_EQ(LogEntries(file), TextsWith(entries, kLog | kVerbatim));
    EXPECT_EQ(ActivityEntries(activity), TextsWith(entries, kActivity));

    // A short password is hidden too, and without the setting none is.
    const std::string shortFile = folder.File("short.txt");
    std::vector<Peer::Row> rows = All();
    rows[kPassword].expects = "YWI=";
    for (const auto& [setting, shown] : {std::pair{"MaskPasswords=1", "****"}, {"MaskPasswords=0", "YWI="}}) {
        Channel(rows).SetLogFile(shortFile);
        channel->settings.password = "ab";
        channel->SetAdvancedSettings(setting);
        EXPECT_EQ(channel->Send(&message), result::Success);
        EXPECT_NE(TemporaryFolder::Read(shortFile).find("COMMAND : " + std::string(shown) + "\n"),
                  std::string::npos);
    }
    channel->SetMessageSizeLimit(0);
    channel->SetActivityFile(activity);
    EXPECT_EQ(channel->Send(&message), 34133);
    EXPECT_EQ(LogEntries(shortFile).back(), "Data size exceeds MMS size limit (" +
                                                std::to_string(message.EncodedMessage.size() * 3 / 4) +
                                                " bytes)");
    EXPECT_EQ(ActivityEntries(activity),
              (std::vector<std::string>{
                  "MM4 Submitting message...",
                  "MM4 Error submitting message (Size of MMS message exceeds the maximum message size)."}));
}

TEST_F(Mm4, KeepsItsSettingsInAProviderFile) {
    const TemporaryFolder folder;
    const std::string file = folder.File("provider.ini");
    Channel({}).settings.format = 3;
    channel->settings.version = mms::asMMS_VERSION_6_8_0;
    ASSERT_EQ(channel->SaveConfig(file), result::Success);
    EXPECT_EQ(TemporaryFolder::Read(file),
              "[Provider]\nProviderHost=mail.example.org\nProviderPort=25\nProviderAccount=account\n"
              "ProviderPassword=secret!\nProviderDomain=example.net\nProviderMM4Format="
              "3\nProviderMM4Version=18\n");
    channel->SetMessageSizeLimit(1);
    channel->SetAdvancedSettings("SmtpAuthentication=0");
    channel->Clear();
    EXPECT_EQ(channel->AdvancedSettings(), "");
    EXPECT_EQ(channel->settings.host + channel->settings.account + channel->settings.domain, "");
    EXPECT_EQ(channel->MessageSizeLimit(), 350'000);
    EXPECT_EQ(channel->settings.version, 0);
    ASSERT_EQ(channel->LoadConfig(file), result::Success);
    EXPECT_EQ(channel->settings.password, "secret!");
    EXPECT_EQ(channel->settings.format, 3);
    EXPECT_EQ(channel->settings.version, 18);
    EXPECT_EQ(channel->LoadConfig(folder.File("none.ini")), 33050);
}

}  // namespace
