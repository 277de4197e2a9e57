// The HTTP channel over its client, against a scripted server: what the gateway gets, what is logged, and
// what becomes of replies.
#include "http/HttpProtocol.h"
#include "support/ScriptedHttp.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

const char* const kForm = "Content-Type: application/x-www-form-urlencoded";

struct Channel {
    explicit Channel(std::vector<HttpScript::Round> rounds = {{.body = "OK 17"}})
        : script(clock, std::move(rounds)), engine(clock, std::make_unique<ScriptedHttp>(script)) {
        engine.settings.host = "gw.example.org";
        engine.settings.port = 8080;
        engine.settings.urlText = "send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%";
        engine.settings.successResponse = "OK";
        engine.settings.errorResponse = "ERR";
        message.Recipient = "+31612345678";
        message.Sender = "1234";
        message.Data = u"Hello";
    }
    std::int32_t Send() { return engine.Send(message).Number(); }

    VirtualClock clock;
    HttpScript script;
    CHttpProtocol engine;
    CSmsMessageX message;
};

TEST(HttpProtocol, PostsTheFilledTemplate) {
    Channel channel;
    EXPECT_EQ(channel.Send(), 0);
    const std::vector<HttpScript::Asked> expected{
        {"POST http://gw.example.org:8080/send", kForm, "to=%2B31612345678&text=Hello"}};
    EXPECT_EQ(channel.script.asked, expected);
    EXPECT_EQ(channel.engine.ProviderResponse(), "OK 17");
    EXPECT_TRUE(channel.script.keptAlive);
}

TEST(HttpProtocol, SettingsOfTheConnection) {
    struct Row {
        const char* name;
        void (*set)(CHttpProtocol& engine);
        const char* line;
        const char* headers;
        const char* proxy;
    };
    const char* const http = "POST http://gw.example.org:8080/send";
    for (const Row& row : {
             Row{"SSL", [](CHttpProtocol& e) { e.settings.useSsl = true; },
                 "POST https://gw.example.org:8080/send", kForm, ""},
             Row{"https in the host",
                 [](CHttpProtocol& e) {
                     e.settings.host = "https://gw";
                     e.settings.port = 0;
                 },
                 "POST https://gw:443/send", kForm, ""},
             Row{"http in the host", [](CHttpProtocol& e) { e.settings.host = "http://gw/sms/"; },
                 "POST http://gw:80/sms:8080/send", kForm, ""},
             Row{"nothing to post", [](CHttpProtocol& e) { e.settings.urlText = "a/%MESSAGEDATA%"; },
                 "GET http://gw.example.org:8080/a/Hello", "", ""},
             Row{"line ends in a template", [](CHttpProtocol& e) { e.settings.urlText = "a\r\nX: 1?b"; },
                 "POST http://gw.example.org:8080/a%0D%0AX:%201", kForm, ""},
             Row{"charset", [](CHttpProtocol& e) { e.settings.charset = "utf-8"; }, http,
                 "Content-Type: application/x-www-form-urlencoded; charset=utf-8", ""},
             Row{"proxy",
                 [](CHttpProtocol& e) {
                     e.settings.proxyServer = "http://px/";
                     e.settings.proxyPort = 3128;
                 },
                 http, kForm, "px:3128"},
             Row{"proxy with its port", [](CHttpProtocol& e) { e.settings.proxyServer = "px:3129"; }, http,
                 kForm, "px:3129"},
             Row{"proxy without a port", [](CHttpProtocol& e) { e.settings.proxyServer = "px"; }, http, kForm,
                 "px:80"},
             Row{"no proxy", [](CHttpProtocol& e) { e.settings.proxyPort = 3128; }, http, kForm, ""},
             Row{"proxy that is no host", [](CHttpProtocol& e) { e.settings.proxyServer = "px x"; }, http,
                 kForm, "px x:80"},
         }) {
        SCOPED_TRACE(row.name);
        Channel channel;
        row.set(channel.engine);
        EXPECT_EQ(channel.Send(), 0);
        ASSERT_EQ(channel.script.asked.size(), 1U);
        EXPECT_EQ(channel.script.asked[0].line, row.line);
        EXPECT_EQ(channel.script.asked[0].headers, row.headers);
        EXPECT_EQ(channel.script.sessions, std::vector{std::string(CKorHttp::kUserAgent) + " " + row.proxy});
    }
}

TEST(HttpProtocol, SettingsOfOneSendDoNotLastForTheNext) {
    Channel channel;
    channel.engine.settings.proxyServer = "px";
    channel.engine.settings.charset = "utf-8";
    EXPECT_EQ(channel.Send(), 0);
    channel.engine.settings.proxyServer = "";
    channel.engine.settings.charset = "";
    channel.engine.settings.urlText = "get";
    EXPECT_EQ(channel.Send(), 0);
    ASSERT_EQ(channel.script.asked.size(), 2U);
    EXPECT_EQ(channel.script.asked[1].line, "GET http://gw.example.org:8080/get");
    EXPECT_EQ(channel.script.asked[1].body, "");
    EXPECT_TRUE(channel.script.sessions.back().ends_with("3.1) "));
}

TEST(HttpProtocol, GivesItsAccountsWhenAsked) {
    Channel channel({{.status = 407}, {.status = 401}, {.body = "OK"}});
    channel.engine.settings.webAccount = "web";
    channel.engine.settings.webPassword = "w1";
    channel.engine.settings.proxyServer = "px";
    channel.engine.settings.proxyAccount = "proxy";
    channel.engine.settings.proxyPassword = "p1";
    EXPECT_EQ(channel.Send(), 0);
    const std::vector<std::string> expected{"proxy 1 proxy:p1", "proxy 1 proxy:p1", "server 1 web:w1"};
    EXPECT_EQ(channel.script.credentials, expected);
}

TEST(HttpProtocol, ResultsAndWhatIsLeftOfTheReply) {
    struct Row {
        const char* name;
        HttpScript::Round round;
        std::int32_t code;
        const char* response;
    };
    for (const Row& row : {
             Row{"success", {.body = "OK 17"}, 0, "OK 17"},
             Row{"accepted", {.status = 202, .body = "OK"}, 0, "OK"},
             Row{"error", {.body = "ERR 5 OK"}, 33301, "ERR 5 OK"},
             Row{"credit", {.body = "ERR: 301"}, 33225, "ERR: 301"},
             Row{"unknown", {.body = "?"}, 33302, "?"},
             Row{"nothing", {.body = ""}, 33302, ""},
             Row{"status", {.status = 404, .body = "OK"}, 22416, ""},
             Row{"no account", {.status = 401, .body = "OK"}, 22412, ""},
             Row{"a proxy's page", {.status = 407, .body = "OK"}, 33302, "OK"},
             Row{"a proxy's error", {.status = 407, .body = "ERR"}, 33301, "ERR"},
             Row{"no server", {.sendError = http::kCannotConnect}, 22404, ""},
         }) {
        SCOPED_TRACE(row.name);
        Channel channel({{.body = "OK first"}, row.round});
        EXPECT_EQ(channel.Send(), 0);
        EXPECT_EQ(channel.Send(), row.code);
        EXPECT_EQ(channel.engine.ProviderResponse(), row.response);
    }
}

TEST(HttpProtocol, ARefusedMessageAsksNobody) {
    Channel channel;
    EXPECT_EQ(channel.Send(), 0);
    channel.message.Data.assign(161, u'a');
    EXPECT_EQ(channel.Send(), 34033);
    EXPECT_EQ(channel.script.asked.size(), 1U);
    EXPECT_EQ(channel.engine.ProviderResponse(), "");
}

TEST(HttpProtocol, TimeOutAndKeepAliveAreAdvancedSettings) {
    struct Row {
        const char* settings;
        std::uint64_t time;  // ms
        bool keepAlive;
    };
    for (const Row& row : {
             Row{"", 60'000, true},
             Row{"HttpTimeout=5;HttpKeepAlive=0", 5'000, false},
             Row{"HttpKeepAlive=1;HttpTimeout=0", 60'000, true},
             Row{"HttpTimeout=-1", 60'000, true},
             Row{"HttpTimeout=2147483647", 86'400'000, true},
         }) {
        SCOPED_TRACE(row.settings);
        Channel channel({{.receiveTime = 0xFFFFFFFE}});
        channel.engine.SetAdvancedSettings(row.settings);
        EXPECT_NE(channel.Send(), 0);
        EXPECT_EQ(channel.clock.Slept(), row.time);
        EXPECT_EQ(channel.script.keptAlive, row.keepAlive);
    }
}

// --- replies that are bad

TEST(HttpProtocol, RepliesOfAnyShape) {
    struct Row {
        const char* name;
        std::string body;
        std::int32_t code;
        std::size_t kept;
    };
    constexpr std::size_t kMost = 16 * 1024 * 1024;
    for (const Row& row : {
             Row{"NULs", std::string("\0\0OK\0", 5), 0, 5},
             Row{"long", std::string(kMost + 1, 'x'), 33302, kMost},
             Row{"decided by what is kept", std::string(kMost - 1, 'x') + "OK", 33302, kMost},
             Row{"formats", "%s%n%s%n OK", 0, 11},
             Row{"every octet", "\xFF\xFE\r\n\x1B\x01OK", 0, 8},
         }) {
        SCOPED_TRACE(row.name);
        Channel channel({{.body = row.body}});
        EXPECT_EQ(channel.Send(), row.code);
        EXPECT_EQ(channel.engine.ProviderResponse().size(), row.kept);
    }
}

// --- logs

struct LoggedChannel : Channel {
    using Channel::Channel;
    void Log() {
        engine.SetLogFile(folder.File("log.txt"));
        engine.SetActivityFile(folder.File("activity.ini"));
    }
    // The file without its times.
    std::string Read(const char* name) const {
        std::string text = TemporaryFolder::Read(folder.File(name));
        for (std::size_t at = 0; (at = text.find("[22:13:20]  ", at)) != std::string::npos;)
            text.erase(at, 12);
        return text;
    }
    TemporaryFolder folder;
};

TEST(HttpProtocol, WritesItsLinesAndTheClientsIntoTheSameFiles) {
    LoggedChannel channel;
    channel.engine.settings.proxyServer = "px";
    channel.engine.settings.proxyPort = 3128;
    channel.Log();
    EXPECT_EQ(channel.Send(), 0);
    EXPECT_EQ(
        channel.Read("log.txt"),
        "HTTP POST [Velqar Build 5.3.10.1123 (x64)], Provider=[gw.example.org:8080], Proxy=[px:3128]\n\n"
        "SENDER ADDRESS      : 1234\n\n"
        "RECIPIENT ADDRESS   : +31612345678\n\n"
        "HTTP URL TEXT       : [send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%]\n\n"
        "HTTP URL DATA       : []\n\n"
        "HTTP URL UCS2       : []\n\n"
        "HTTP SUCCESS RESP   : [OK]\n\n"
        "HTTP ERROR RESP     : [ERR]\n\n"
        "HTTP PROXY SERVER   : px:3128\n\n"
        "HTTP REQUESTTIMEOUT : 60 SECS\n\n"
        "HTTP KEEP ALIVE     : ENABLED\n\n"
        "HTTP CONNECT        : gw.example.org:8080/send\n\n"
        "HTPP TIMEOUT        : 60 seconds\n\n"
        "USING SSL           : NO\n\n"
        "POST DATA           : to=%2B31612345678&text=Hello\n\n"
        "HTTP RESPONSE CODE  : 200\n\n"
        "HTTP RESPONSE DATA  : OK 17\n\n");
    EXPECT_EQ(channel.Read("activity.ini"),
              "[Init]\nInitialized=1\nNextEntry=5\n[Log]\n"
              "00000000|Http Post Submitting message to [+31612345678]\n"
              "00000001|Http Connect [gw.example.org:8080/send], ProxyServer=[px:3128], SSL=[no]\n"
              "00000002|Http Connect Result = [Success]\n"
              "00000003|Http Response Data = [OK 17]\n"
              "00000004|Http Post Result = [Success]\n");
}

TEST(HttpProtocol, LogsFailures) {
    LoggedChannel channel;
    channel.engine.settings.useSsl = true;
    channel.engine.settings.urlText = "";
    channel.Log();
    EXPECT_EQ(channel.Send(), 33303);
    const std::string log = channel.Read("log.txt");
    EXPECT_NE(log.find("Provider=[gw.example.org:8080], Proxy=[not using proxy]\n"), std::string::npos);
    EXPECT_TRUE(log.ends_with(
        "HTTP POST RESULT    : ERROR 33303 (URL template for sending text messages not set)\n\n"));
    channel.engine.settings.urlText = "a?b";
    EXPECT_EQ(channel.Send(), 0);
    const std::string activity = channel.Read("activity.ini");
    EXPECT_NE(activity.find("|Http Post Result = [URL template for sending text messages not set]\n"),
              std::string::npos);
    EXPECT_NE(activity.find("|Http Connect [gw.example.org:8080/a], ProxyServer=[not using proxyserver], "
                            "SSL=[yes]\n"),
              std::string::npos);
}

TEST(HttpProtocol, NoPropertyMakesALineOfItsOwn) {
    for (const char* proxy : {"", "px\nFORGED"}) {
        LoggedChannel channel;
        channel.engine.settings.host = "gw\r\nFORGED";
        channel.engine.settings.proxyServer = proxy;
        channel.message.Sender = "1\nFORGED";
        channel.message.Recipient = "+31612345678\r\nFORGED";
        channel.Log();
        channel.Send();
        for (const char* file : {"log.txt", "activity.ini"}) {
            const std::string text = channel.Read(file);
            EXPECT_NE(text.find(" FORGED"), std::string::npos) << text;
            EXPECT_EQ(text.find("\nFORGED"), std::string::npos) << text;
        }
    }
}

TEST(HttpProtocol, LongTextsAreLoggedWhole) {
    LoggedChannel channel({{.body = std::string(100'000, 'r')}});
    channel.engine.settings.urlText = "a?" + std::string(100'000, 't');
    channel.Log();
    EXPECT_EQ(channel.Send(), 33302);
    const std::string log = channel.Read("log.txt");
    EXPECT_NE(log.find("[a?" + std::string(100'000, 't') + "]\n"), std::string::npos);
    EXPECT_NE(log.find(" : " + std::string(100'000, 'r') + "\n"), std::string::npos);
}

TEST(HttpProtocol, NoPasswordStandsInAMaskedLog) {
    for (const char* advanced : {"MaskPasswords=1", ""}) {
        SCOPED_TRACE(advanced);
        LoggedChannel channel({{.body = "OK: web/secret and proxy secret"}});
        HttpProviderSettings& settings = channel.engine.settings;
        settings.webPassword = "web/secret";
        settings.proxyServer = "px";
        settings.proxyPassword = "proxy secret";
        settings.urlText = "%2fweb%2Fsecret/send?pw=web/secret&x=proxy+secret";
        channel.engine.SetAdvancedSettings(advanced);
        channel.Log();
        EXPECT_EQ(channel.Send(), 0);
        EXPECT_EQ(channel.script.asked[0].body, "pw=web/secret&x=proxy+secret");
        const std::string both = channel.Read("log.txt") + channel.Read("activity.ini");
        EXPECT_EQ(both.find("secret") == std::string::npos, *advanced != '\0') << both;
    }
}

// --- the rest of the object

TEST(HttpProtocol, AMissingLibraryIsToldInBothFiles) {
    LoggedChannel channel;
    channel.Log();
    channel.script.loadError = 126;
    EXPECT_EQ(channel.Send(), 22390);
    for (const char* file : {"log.txt", "activity.ini"}) {
        EXPECT_NE(channel.Read(file).find("LoadLibrary [winhttp.dll]"), std::string::npos) << file;
    }
}

TEST(HttpProtocol, ClearPutsEverythingBack) {
    LoggedChannel channel;
    channel.engine.settings.proxyServer = "px";
    channel.engine.SetAdvancedSettings("HttpTimeout=1");
    channel.Log();
    const auto settings = channel.engine.settings;
    EXPECT_EQ(channel.Send(), 0);
    const std::string both = channel.Read("log.txt") + channel.Read("activity.ini");
    channel.engine.Clear();
    EXPECT_EQ(channel.engine.settings.host, "");
    EXPECT_EQ(channel.engine.settings.proxyServer, "");
    EXPECT_EQ(channel.engine.ProviderResponse(), "");
    EXPECT_EQ(channel.engine.AdvancedSettings(), "");
    // What is sent next is logged nowhere, and goes over a connection of its own.
    channel.engine.settings = settings;
    EXPECT_EQ(channel.Send(), 0);
    EXPECT_EQ(channel.Read("log.txt") + channel.Read("activity.ini"), both);
    EXPECT_EQ(channel.script.sessions.size(), 2U);
}

TEST(HttpProtocol, ProviderFilesHoldTheSettings) {
    const TemporaryFolder folder;
    const std::string file = folder.File("gateway.ini");
    const std::string text =
        "[Provider]\nProviderHostName=gw\nProviderHostPort=8443\nProviderUseSSL=1\nProviderWebAccount=me\n"
        "ProviderWebPassword=pw\nProviderCharset=utf-8\nProviderUrlText=t?a=%MESSAGEDATA%;b=[1]\n"
        "ProviderUrlBinary=b?c\nProviderUrlUnicode=u?d\nProviderSuccessResponse=OK=1\n"
        "ProviderErrorResponse=ERR\n"
        "[Proxy]\nProxyHost=px\nProxyPort=3128\nProxyAccount=p\nProxyPassword=q\n";
    TemporaryFolder::Write(file, text);
    Channel channel;
    EXPECT_EQ(channel.engine.LoadConfig(file), 0);
    EXPECT_TRUE(channel.engine.settings.useSsl);
    EXPECT_EQ(channel.engine.settings.port, 8443);
    EXPECT_EQ(channel.engine.settings.urlUnicode, "u?d");
    EXPECT_EQ(channel.engine.settings.proxyPassword, "q");
    EXPECT_EQ(channel.engine.SaveConfig(folder.File("saved.ini")), 0);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("saved.ini")), text);
    EXPECT_EQ(channel.engine.LoadConfig(folder.File("none.ini")), 33050);
}

}  // namespace
