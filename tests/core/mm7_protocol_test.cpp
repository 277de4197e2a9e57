// The MM7 channel over its client, against a scripted server: what the centre gets, what is logged, and what
// becomes of replies.
#include "foundation/ErrorTexts.h"
#include "mms/Mm7Protocol.h"
#include "support/LogEntries.h"
#include "support/ScriptedHttp.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

std::string Reply(const std::string& code, const std::string& text = {}, const std::string& id = {}) {
    return "<e:Envelope xmlns:e='x'><e:Body><SubmitRsp><Status><StatusCode>" + code +
           "</StatusCode><StatusText>" + text + "</StatusText></Status><MessageID>" + id +
           "</MessageID></SubmitRsp></e:Body></e:Envelope>";
}
const char* const kFault =
    "<e:Envelope xmlns:e='x'><e:Body><e:Fault><faultstring>Who?</faultstring><detail>"
    "<VASPErrorRsp><StatusCode>4001</StatusCode></VASPErrorRsp></detail></e:Fault>"
    "</e:Body></e:Envelope>";

struct Channel {
    explicit Channel(std::vector<HttpScript::Round> rounds = {{.body = Reply("1000", "Success", "m1")}})
        : script(clock, std::move(rounds)), engine(clock, std::make_unique<ScriptedHttp>(script)) {
        engine.settings.host = "mmsc.example.org";
        (void)message.AddRecipient("+31612345678", 0);
        message.AddSlide({0, 5, {{"image/jpeg", "<a.jpg>", "a.jpg", "", "JPEG"}}});
    }
    std::int32_t Send() { return engine.Send(&message).Number(); }

    VirtualClock clock;
    HttpScript script;
    CMm7Protocol engine;
    CMmsMessage message{clock};
};

TEST(Mm7Protocol, Defaults) {
    Channel channel;
    channel.engine.settings = {.host = "x", .port = 1};
    channel.engine.Clear();
    const Mm7Settings& s = channel.engine.settings;
    EXPECT_EQ(std::tuple(s.host, s.port, s.sizeLimit, s.timeout), std::tuple("", 0, 307200, 60000));
    EXPECT_EQ(std::tuple(s.submission.schema, s.submission.version, s.submission.variation),
              std::tuple(2, 0, 0));
}

TEST(Mm7Protocol, PostsTheEncodedMessage) {
    Channel channel;
    channel.engine.settings.submission = {.vaspId = "vasp", .vasId = "vas", .serviceCode = "gold"};
    EXPECT_EQ(channel.Send(), 0);
    ASSERT_EQ(channel.script.asked.size(), 1U);
    const HttpScript::Asked& asked = channel.script.asked[0];
    EXPECT_EQ(asked.line, "POST http://mmsc.example.org:80/");
    EXPECT_EQ(asked.headers, channel.message.Boundary);
    EXPECT_EQ(asked.body, channel.message.EncodedMessage);
    EXPECT_EQ(channel.message.Protocol, mms::asMMS_PROTOCOL_MM7);
    for (const char* element : {"<VASPID>vasp<", "<VASID>vas<", "<ServiceCode>gold<"}) {
        EXPECT_THAT(asked.body, testing::HasSubstr(element));
    }
    EXPECT_EQ(channel.engine.ProviderResponse(), u"Success");
    EXPECT_EQ(channel.engine.MessageId(), u"m1");
}

TEST(Mm7Protocol, SettingsOfTheConnection) {
    struct Row {
        const char* name;
        void (*set)(Mm7Settings& settings);
        const char* line;
        const char* proxy;
    };
    for (const Row& row : {
             Row{"path", [](Mm7Settings& s) { s.path = "mm7/submit?a=b"; },
                 "http://mmsc.example.org:80/mm7/submit?a=b", ""},
             Row{"path with a slash, and port",
                 [](Mm7Settings& s) {
                     s.path = "/mm7";
                     s.port = 8080;
                 },
                 "http://mmsc.example.org:8080/mm7", ""},
             Row{"blanks around a path", [](Mm7Settings& s) { s.path = " /a b\t"; },
                 "http://mmsc.example.org:80/a%20b", ""},
             Row{"SSL", [](Mm7Settings& s) { s.useSsl = true; }, "https://mmsc.example.org:443/", ""},
             Row{"https in the host", [](Mm7Settings& s) { s.host = "https://m:8443"; }, "https://m:8443/",
                 ""},
             Row{"SSL with http in the host",
                 [](Mm7Settings& s) {
                     s.host = "http://m/";
                     s.useSsl = true;
                 },
                 "https://m:443/", ""},
             Row{"a URL goes before port and path",
                 [](Mm7Settings& s) {
                     s.host = "http://m:81/a";
                     s.port = 82;
                     s.path = "b";
                 },
                 "http://m:81/a", ""},
             Row{"half a URL",
                 [](Mm7Settings& s) {
                     s.host = "http://m/";
                     s.port = 82;
                     s.path = "b";
                 },
                 "http://m:82/b", ""},
             Row{"IPv6", [](Mm7Settings& s) { s.host = "[::1]:81"; }, "http://[::1]:81/", ""},
             Row{"line ends in a path", [](Mm7Settings& s) { s.path = "a\r\nX: 1"; },
                 "http://mmsc.example.org:80/a%0D%0AX:%201", ""},
             Row{"proxy",
                 [](Mm7Settings& s) {
                     s.proxyServer = "px";
                     s.proxyPort = 3128;
                 },
                 "http://mmsc.example.org:80/", "px:3128"},
         }) {
        SCOPED_TRACE(row.name);
        Channel channel;
        row.set(channel.engine.settings);
        EXPECT_EQ(channel.Send(), 0);
        ASSERT_EQ(channel.script.asked.size(), 1U);
        EXPECT_EQ(channel.script.asked[0].line, std::string("POST ") + row.line);
        EXPECT_EQ(channel.script.sessions, std::vector{std::string(CKorHttp::kUserAgent) + " " + row.proxy});
    }
}

TEST(Mm7Protocol, NoServerThatCouldBeAsked) {
    for (const auto& [host, port] : std::vector<std::pair<std::string, std::int32_t>>{
             {"", 0}, {"a b", 0}, {"m", 65536}, {"m", -1}, {"ftp://m", 0}}) {
        Channel channel;
        channel.engine.settings.host = host;
        channel.engine.settings.port = port;
        EXPECT_EQ(channel.Send(), 22404) << host << port;
        EXPECT_TRUE(channel.script.asked.empty());
    }
}

TEST(Mm7Protocol, GivesItsAccountsWhenAsked) {
    Channel channel({{.status = 407}, {.status = 401}, {.body = Reply("1000")}});
    channel.engine.settings.webAccount = "web";
    channel.engine.settings.webPassword = "w1";
    channel.engine.settings.proxyServer = "px";
    channel.engine.settings.proxyAccount = "proxy";
    channel.engine.settings.proxyPassword = "p1";
    EXPECT_EQ(channel.Send(), 0);
    const std::vector<std::string> expected{"proxy 1 proxy:p1", "proxy 1 proxy:p1", "server 1 web:w1"};
    EXPECT_EQ(channel.script.credentials, expected);
}

// Whoever asks where no proxy is set is not told the account of one that was.
TEST(Mm7Protocol, AProxysAccountGoesWithItsProxy) {
    Channel channel({{.body = Reply("1000")}, {.status = 407}});
    channel.engine.settings.proxyServer = "px";
    channel.engine.settings.proxyAccount = "proxy";
    channel.engine.settings.proxyPassword = "p1";
    EXPECT_EQ(channel.Send(), 0);
    channel.engine.settings.proxyServer = "";
    EXPECT_EQ(channel.Send(), 22405);
    EXPECT_THAT(channel.script.credentials, testing::Not(testing::Contains(testing::HasSubstr("p1"))));
}

TEST(Mm7Protocol, ResultsAndWhatIsLeftOfTheReply) {
    struct Row {
        const char* name;
        HttpScript::Round round;
        std::int32_t code;
        const char16_t* response;
        const char16_t* id;
    };
    for (const Row& row : {
             Row{"success", {.body = Reply("1000", "Success", "m1")}, 0, u"Success", u"m1"},
             Row{"partly",
                 {.status = 202, .body = Reply("1100", "Not to all", "m2")},
                 0,
                 u"Not to all",
                 u"m2"},
             Row{"refused", {.body = Reply("2002", "Adr\xC3\xA8sse", "m3")}, 33802, u"Adr\u00E8sse", u""},
             Row{"no text", {.body = Reply("3001")}, 33821, u"", u""},
             Row{"fault", {.body = kFault}, 33831, u"Who?", u""},
             Row{"fault with its status", {.status = 500, .body = kFault}, 33831, u"Who?", u""},
             Row{"error without a fault", {.status = 500, .body = Reply("1000", "Ok")}, 22419, u"Ok", u""},
             Row{"HTML", {.body = "<html><br></html>"}, 33830, u"<html><br></html>", u""},
             Row{"nothing", {.body = ""}, 33830, u"", u""},
             Row{"missing", {.status = 404, .body = "Nothing here"}, 22416, u"Nothing here", u""},
             Row{"unavailable", {.status = 503, .body = kFault}, 22422, u"Who?", u""},
             Row{"account", {.status = 401}, 22412, u"", u""},
             Row{"a proxy's page", {.status = 407, .body = Reply("1000", "Ok", "m")}, 22405, u"Ok", u""},
             Row{"no server", {.sendError = http::kCannotConnect}, 22404, u"", u""},
             Row{"lost", {.receiveError = 12030}, 22407, u"", u""},
             Row{"cut", {.body = Reply("1000", "Success", "m1").substr(0, 95)}, 0, u"", u""},
         }) {
        SCOPED_TRACE(row.name);
        Channel channel({row.round});
        EXPECT_EQ(channel.Send(), row.code);
        EXPECT_EQ(channel.engine.ProviderResponse(), row.response);
        EXPECT_EQ(channel.engine.MessageId(), row.id);
    }
}

TEST(Mm7Protocol, AFailureLeavesNothingOfTheMessageBefore) {
    Channel channel;
    EXPECT_EQ(channel.Send(), 0);
    channel.message.ClearRecipients();
    EXPECT_EQ(channel.Send(), 34130);
    EXPECT_EQ(channel.engine.ProviderResponse(), u"");
    EXPECT_EQ(channel.engine.MessageId(), u"");
    EXPECT_EQ(channel.script.asked.size(), 1U);

    const TemporaryFolder folder;
    Channel without;
    EXPECT_EQ(without.Send(), 0);
    without.engine.SetLogFile(folder.File("log"));
    EXPECT_EQ(without.engine.Send(nullptr), 34141);
    EXPECT_EQ(without.engine.ProviderResponse(), u"");
    EXPECT_EQ(without.engine.MessageId(), u"");
    EXPECT_THAT(TemporaryFolder::Read(folder.File("log")), testing::HasSubstr("SEND RESULT: ERROR 34141 ("));
}

TEST(Mm7Protocol, TheSizeLimitCountsTheWholeMessage) {
    Channel channel;
    EXPECT_EQ(channel.Send(), 0);
    const auto size = static_cast<std::int32_t>(channel.message.EncodedMessage.size());
    for (const auto& [limit, code] :
         {std::pair(size, 0), std::pair(size - 1, 34133), std::pair(0, 34133), std::pair(-1, 34133)}) {
        channel.engine.settings.sizeLimit = limit;
        EXPECT_EQ(channel.Send(), code) << limit;
    }
    EXPECT_EQ(channel.script.asked.size(), 2U);
}

TEST(Mm7Protocol, TheTimeIsInMilliseconds) {
    for (const auto& [timeout, until] :
         {std::pair(1, 1000U), std::pair(1500, 2000U), std::pair(60000, 60000U), std::pair(0, 60000U),
          std::pair(-5, 60000U)}) {
        Channel channel({{.receiveTime = 3'000'000}});
        channel.engine.settings.timeout = timeout;
        EXPECT_EQ(channel.Send(), 22407) << timeout;
        EXPECT_EQ(channel.clock.Slept(), until);
    }
}

TEST(Mm7Protocol, KeepsItsConnectionUnlessToldOtherwise) {
    for (const auto& [setting, kept] : {std::pair("", true), std::pair("HttpKeepAlive=0", false)}) {
        Channel channel;
        channel.engine.SetAdvancedSettings(setting);
        EXPECT_EQ(channel.Send(), 0);
        EXPECT_EQ(channel.script.keptAlive, kept);
    }
}

// A reply is read up to its first MiB.
TEST(Mm7Protocol, LongReplies) {
    const std::string reply = Reply("1000", "Success", "m1");
    for (const auto& [size, code] : {std::pair(1U << 20, 0), std::pair((1U << 20) + 200, 33830)}) {
        Channel channel({{.body = std::string(size - reply.size(), ' ') + reply}});
        EXPECT_EQ(channel.Send(), code) << size;
    }
}

TEST(Mm7Protocol, LogLines) {
    const TemporaryFolder folder;
    Channel channel;
    channel.engine.SetLogFile(folder.File("log"));
    channel.engine.SetAdvancedSettings("MaskPasswords=1");
    channel.engine.settings.webAccount = "web";
    channel.engine.settings.webPassword = "secret word";
    channel.engine.settings.proxyPassword = "secretly";
    channel.engine.settings.path = "mm7?password=secret%20word&proxy=secretly";
    EXPECT_EQ(channel.Send(), 0);
    channel.engine.settings.sizeLimit = 10;
    EXPECT_EQ(channel.Send(), 34133);
    const std::string size = std::to_string(channel.message.EncodedMessage.size());
    EXPECT_EQ(FirstMissing(
                  LogEntries(folder.File("log")),
                  {
                      "Velqar Build 5.3.10.1123 (x64), Server=[mmsc.example.org]",
                      "Maximum MMS size is set to 307200 bytes",
                      "MM7 Submitting message...",
                      "MM7 Post data to server [http://mmsc.example.org/mm7?password=****&proxy=****]...",
                      "MM7 Waiting for response...",
                      "MM7 STATUSCODE      : 1000",
                      "MM7 STATUSTEXT      : Success",
                      "MM7 MESSAGEID       : m1",
                      "MM7 Message successfully submitted.",
                      "Maximum MMS size is set to 10 bytes",
                      "Data size exceeds MMS size limit (" + size + " bytes)",
                      "MM7 Error submitting message (Size of MMS message exceeds the maximum message size).",
                      "SEND RESULT: ERROR 34133 (Size of MMS message exceeds the maximum message size)",
                  }),
              "");
    const std::string log = TemporaryFolder::Read(folder.File("log"));
    EXPECT_THAT(log, testing::Not(testing::HasSubstr("secret")));
}

TEST(Mm7Protocol, ASettingStaysOneLineOfTheLog) {
    const std::string forged = "\r\n[22:13:20]  forged";
    for (const auto& [host, path, server, url] :
         {std::tuple{"m" + forged, std::string(), "m  [22:13:20]  forged", "m  [22:13:20]  forged"},
          {"m", "/p" + forged, "m", "http://m/p  [22:13:20]  forged"}}) {
        const TemporaryFolder folder;
        Channel channel({{.status = 401}, {.body = Reply("1000")}});
        channel.engine.SetLogFile(folder.File("log"));
        channel.engine.SetActivityFile(folder.File("activity"));
        channel.engine.settings.proxyServer = "px" + forged;
        channel.engine.settings.webAccount = "web" + forged;
        channel.engine.settings.host = host;
        channel.engine.settings.path = path;
        (void)channel.Send();
        const std::vector<std::string> wanted{
            "Velqar Build 5.3.10.1123 (x64), Server=[" + std::string(server) + "]",
            "MM7 Post data to server [" + std::string(url) + "]...", "MM7 Waiting for response..."};
        EXPECT_EQ(FirstMissing(LogEntries(folder.File("log")), wanted), "");
        EXPECT_EQ(FirstMissing(ActivityEntries(folder.File("activity")), wanted), "");
        EXPECT_THAT(LogEntries(folder.File("log")),
                    testing::Each(testing::Not(testing::StartsWith("forged"))));
    }
}

TEST(Mm7Protocol, LogsAStatusOfRepliesAlone) {
    const TemporaryFolder folder;
    for (const auto& [round, isLogged] :
         {std::pair(HttpScript::Round{.sendError = http::kCannotConnect}, false),
          std::pair(HttpScript::Round{.receiveError = 12030}, false),
          std::pair(HttpScript::Round{.status = 404}, true)}) {
        const std::string file = folder.File("log" + std::to_string(round.status + round.receiveError));
        Channel channel({round});
        channel.engine.SetLogFile(file);
        EXPECT_NE(channel.Send(), 0);
        const std::string log = TemporaryFolder::Read(file);
        EXPECT_THAT(log, testing::HasSubstr("SEND RESULT: ERROR"));
        EXPECT_EQ(log.find("MM7 STATUSCODE      : \n") != std::string::npos, isLogged);
        EXPECT_EQ(log.find("MM7 MESSAGEID") != std::string::npos, isLogged);
    }
}

TEST(Mm7Protocol, ProviderFiles) {
    const TemporaryFolder folder;
    const std::string file = folder.File("provider.ini");
    Channel channel;
    channel.engine.settings = {
        .host = "h",
        .port = 1,
        .path = "p",
        .useSsl = true,
        .webAccount = "a",
        .webPassword = " w ",
        .submission =
            {.schema = 3, .version = 4, .variation = 1, .vaspId = "vp", .vasId = "vs", .serviceCode = "s"},
        .sizeLimit = 5,
        .timeout = 6,
        .proxyServer = "px",
        .proxyPort = 7,
        .proxyAccount = "pa",
        .proxyPassword = "pp"};
    EXPECT_EQ(channel.engine.SaveConfig(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file),
              "[Provider]\nProviderHost=h\nProviderPort=1\nProviderPath=p\nProviderUseSSL=1\n"
              "ProviderWebAccount=a\nProviderWebPassword=\" w \"\nProviderVASPID=vp\nProviderVASID=vs\n"
              "ProviderServiceCode=s\nProviderMM7Version=4\nProviderMM7Schema=3\nProviderMM7Variation=1\n"
              "ProviderMessageSizeLimit=5\nProviderTimeout=6\nProxyServer=px\nProxyPort=7\n"
              "ProxyAccount=pa\nProxyPassword=pp\n");
    channel.engine.Clear();
    EXPECT_EQ(channel.engine.LoadConfig(file), 0);
    const std::string again = folder.File("again.ini");
    EXPECT_EQ(channel.engine.SaveConfig(again), 0);
    EXPECT_EQ(TemporaryFolder::Read(again), TemporaryFolder::Read(file));
    TemporaryFolder::Write(file, "");
    EXPECT_EQ(channel.engine.settings.webPassword, " w ");
    EXPECT_EQ(channel.engine.LoadConfig(file), 33051);
    EXPECT_EQ(channel.engine.LoadConfig(folder.File("none")), 33050);
}

}  // namespace
