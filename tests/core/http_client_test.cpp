// The HTTP client over a scripted server, in virtual time.
#include "foundation/http/HttpStatus.h"
#include "foundation/http/KorHttp.h"
#include "support/ScriptedHttp.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using Round = HttpScript::Round;
using Lines = std::vector<std::string>;
using http::Header;

constexpr const char* kUrl = "http://gate.example/send";

Round Status(std::uint32_t status) { return {.status = status}; }
Round RedirectTo(const std::string& target, std::uint32_t status = 302) {
    return {.status = status, .headers = {{Header::kLocation, target}}};
}

struct Client {
    explicit Client(std::vector<Round> rounds) : script(clock, std::move(rounds)) {}

    // Each line that went out, with its address.
    Lines Asked() const {
        Lines lines;
        for (const HttpScript::Asked& asked : script.asked) lines.push_back(asked.line);
        return lines;
    }

    VirtualClock clock;
    HttpScript script;
    CKorHttp client{clock, std::make_unique<ScriptedHttp>(script)};
};

TEST(HttpClient, SaysWhatAStatusMeansAndHowLongItTook) {
    struct Row {
        std::uint32_t status;
        std::int32_t code;
        std::size_t rounds;
        std::uint64_t time = 0;  // ms
    };
    for (const Row& row : std::vector<Row>{
             {200, 0, 1},
             {202, 0, 1},
             {201, 0, 1},
             {204, 0, 1},
             {299, 0, 1},
             {400, 22418, 1},
             {403, 22417, 1},
             {404, 22416, 1},
             {405, 22427, 1},
             {410, 22420, 1},
             {500, 22419, 1},
             {501, 22421, 1},
             {502, 22424, 1},
             {503, 22422, 1},
             {504, 22425, 1},
             {401, 22412, 1},
             {407, 0, 1},
             {301, 22408, 1},
             {302, 22408, 1},
             {303, 22410, 6, 60'000},
             {418, 22410, 6, 60'000},
             {100, 22410, 6, 60'000},
             {600, 22410, 6, 60'000},
             {0, 22410, 6, 60'000},
         }) {
        SCOPED_TRACE(row.status);
        Client http({{.status = row.status, .body = "text"}});
        EXPECT_EQ(http.client.Request(kUrl).Number(), row.code);
        EXPECT_EQ(http.script.asked.size(), row.rounds);
        EXPECT_EQ(http.clock.Slept(), row.time);
        EXPECT_EQ(http.client.Reply().status, row.code == 0 ? row.status : 0);
        EXPECT_EQ(http.client.Reply().body, row.code == 0 ? "text" : "");
    }
}

TEST(HttpClient, RepeatsAnUnknownStatusAfterPausesThatDouble) {
    Client http({Status(429), Status(429), Status(429), Status(200)});
    EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
    EXPECT_EQ(http.script.askedAt, (std::vector<std::uint32_t>{0, 1000, 3000, 7000}));
    EXPECT_EQ(http.script.requestsOpened, 4u);
}

TEST(HttpClient, AsksForWhatItWasTold) {
    struct Row {
        const char* name;
        const char* url;
        bool secure;
        const char* postText;
        const char* postHeaders;
        std::optional<std::string_view> body;
        HttpScript::Asked asked;
    };
    const std::string form = "Content-Type: application/x-www-form-urlencoded";
    for (const Row& row : std::vector<Row>{
             {"get", "http://h/p?q=1", false, "", "", {}, {"GET http://h:80/p?q=1", "Accept: */*", ""}},
             {"form", "http://h/p", false, "a=b", "", {}, {"POST http://h:80/p", form, "a=b"}},
             {"own type",
              "http://h/p",
              false,
              "a=b",
              "Content-Type: x/y\r\nA: b",
              {},
              {"POST http://h:80/p", "Content-Type: x/y\r\nA: b", "a=b"}},
             {"buffer before text",
              "http://h/p",
              false,
              "a=b",
              "",
              std::string_view("\0\xFF", 2),
              {"POST http://h:80/p", form, std::string("\0\xFF", 2)}},
             {"empty buffer",
              "http://h/p",
              false,
              "",
              "",
              std::string_view(),
              {"POST http://h:80/p", form, ""}},
             {"secure by scheme",
              "HTTPS://h/p",
              false,
              "",
              "",
              {},
              {"GET https://h:443/p", "Accept: */*", ""}},
             {"secure by setting", "h:81/p", true, "", "", {}, {"GET https://h:81/p", "Accept: */*", ""}},
             {"a single slash", "https:/h/p", false, "", "", {}, {"GET https://h:443/p", "Accept: */*", ""}},
             {"no path", "h", false, "", "", {}, {"GET http://h:80/", "Accept: */*", ""}},
             {"query alone", "h?q#part", false, "", "", {}, {"GET http://h:80/?q", "Accept: */*", ""}},
             {"IPv6",
              "http://[::1]:8080/p",
              false,
              "",
              "",
              {},
              {"GET http://[::1]:8080/p", "Accept: */*", ""}},
             {"what could end a line",
              "h/a b\r\nX: y\x7F\xE9",
              false,
              "",
              "",
              {},
              {"GET http://h:80/a%20b%0D%0AX:%20y%7F%E9", "Accept: */*", ""}},
         }) {
        SCOPED_TRACE(row.name);
        Client http({Status(200)});
        http.client.settings.secure = row.secure;
        http.client.settings.getHeaders = "Accept: */*";
        http.client.settings.postText = row.postText;
        http.client.settings.postHeaders = row.postHeaders;
        EXPECT_EQ(http.client.Request(row.url, row.body).Number(), 0);
        ASSERT_EQ(http.script.asked.size(), 1u);
        EXPECT_EQ(http.script.asked[0].line, row.asked.line);
        EXPECT_EQ(http.script.asked[0].headers, row.asked.headers);
        EXPECT_EQ(http.script.asked[0].body, row.asked.body);
        EXPECT_EQ(http.script.sessions, Lines{"Mozilla/4.0 (compatible; Win32; Quorvane.Http.3.1) "});
    }
    for (const char* url :
         {"", "http://", "http:///p", "http://h:0/", "http://h:65536/", "http://h:8a/", "http://u:p@h/",
          "file:///c:/x", "javascript:/x", "http://a b/", "http://a\r\nb/"}) {
        SCOPED_TRACE(url);
        Client http({Status(200)});
        EXPECT_EQ(http.client.Request(url).Number(), 22404);
        EXPECT_TRUE(http.script.asked.empty());
    }
}

TEST(HttpClient, FollowsRedirects) {
    struct Row {
        const char* from;
        std::vector<Round> rounds;
        std::int32_t code;
        Lines asked;  // behind the first
    };
    for (const Row& row : std::vector<Row>{
             {"http://h:81/a", {RedirectTo("https://h2/b"), Status(200)}, 0, {"POST https://h2:443/b"}},
             {"https://h/a",
              {RedirectTo("http://h2:82/b?c", 301), Status(200)},
              0,
              {"POST http://h2:82/b?c"}},
             {"https://h:81/a/b", {RedirectTo("/c/d"), Status(200)}, 0, {"POST https://h:81/c/d"}},
             {"http://h:81/a/b", {RedirectTo("c/d"), Status(200)}, 0, {"POST http://h:81/c/d"}},
             {"https://h/a", {RedirectTo("httpd/x"), Status(200)}, 0, {"POST https://h:443/httpd/x"}},
             {"http://h/a",
              {RedirectTo("/b?u=http://x/"), Status(200)},
              0,
              {"POST http://h:80/b?u=http://x/"}},
             {"http://h/a",
              {RedirectTo("https://h/b"), RedirectTo("http://h/c"), Status(202)},
              0,
              {"POST https://h:443/b", "POST http://h:80/c"}},
             {"http://h/a", {RedirectTo("/b"), Status(404)}, 22416, {"POST http://h:80/b"}},
             {"http://h/a", {RedirectTo("ftp://h/b")}, 22404, {}},
             {"http://h/a", {RedirectTo("http://")}, 22404, {}},
         }) {
        SCOPED_TRACE(row.from + (" " + row.rounds[0].headers.at(Header::kLocation)));
        Client http(row.rounds);
        http.client.settings.postText = "x=y";
        EXPECT_EQ(http.client.Request(row.from).Number(), row.code);
        Lines asked = http.Asked();
        asked.erase(asked.begin());
        EXPECT_EQ(asked, row.asked);
        for (const HttpScript::Asked& one : http.script.asked) EXPECT_EQ(one.body, "x=y");
        EXPECT_EQ(http.clock.Slept(), 0u);
    }
}

// A caller's "Host:" is of the host that it asked for, and of no other; the platform names those.
TEST(HttpClient, AHostLineGoesToItsHostAlone) {
    Client http({RedirectTo("https://GATE.example:81/b"), RedirectTo("http://other/c"), RedirectTo("/d"),
                 RedirectTo("http://gate.example/e"), Status(200)});
    http.client.settings.postText = "x=y";
    http.client.settings.postHeaders = "A: 1\r\nHOST: gate.example\r\nHosts: 2\r\n";
    EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
    const std::string all = http.client.settings.postHeaders;
    const std::string others = "A: 1\r\nHosts: 2\r\n";
    Lines headers;
    for (const HttpScript::Asked& one : http.script.asked) headers.push_back(one.headers);
    EXPECT_EQ(headers, (Lines{all, all, others, others, all}));
}

TEST(HttpClient, ARedirectInACircleEndsWithTheTime) {
    Client http({RedirectTo("/b")});
    EXPECT_EQ(http.client.Request(kUrl).Number(), 22410);
    EXPECT_EQ(http.clock.Slept(), 60'000u);
    EXPECT_EQ(http.script.asked.size(), 16u);  // ten at once, then after 1, 2, 4, 8, 16 s
}

TEST(HttpClient, AnswersChallenges) {
    const Round asksServer{.status = 401, .offered = http::kBasic | http::kDigest};
    const Round asksProxy{.status = 407, .offered = http::kBasic | http::kNtlm};
    struct Row {
        const char* name;
        std::vector<Round> rounds;
        std::int32_t code;
        Lines credentials;
        std::size_t asked;
        std::uint32_t status;
    };
    const std::string server = "server 8 web:pw";
    const std::string proxy = "proxy 2 prox:pp";
    const Round noSchemes{.status = 401, .offered = 0};
    const Round failingSchemes{.status = 401, .schemesError = 12019};
    const Round failingProxySchemes{.status = 407, .schemesError = 12019};
    const Round again{.status = 401, .sendError = http::kResendRequest};
    const Round againLater{.status = 401, .receiveError = http::kResendRequest};
    const Round loginFails{.receiveError = http::kLoginFailure};
    for (const Row& row : std::vector<Row>{
             {"server", {asksServer, Status(200)}, 0, {server}, 2, 200},
             {"server twice", {asksServer, asksServer}, 22412, {server}, 2, 0},
             {"proxy", {asksProxy, Status(200)}, 0, {proxy}, 2, 200},
             {"proxy twice", {asksProxy, asksProxy}, 22405, {proxy}, 2, 0},
             {"both", {asksProxy, asksServer, Status(200)}, 0, {proxy, proxy, server}, 3, 200},
             {"both, then the proxy again",
              {asksProxy, asksServer, asksProxy},
              22405,
              {proxy, proxy, server},
              3,
              0},
             {"no scheme known", {noSchemes}, 22409, {}, 1, 0},
             {"schemes cannot be read", {failingSchemes}, 22409, {}, 1, 0},
             {"the proxy's neither", {failingProxySchemes}, 22409, {}, 1, 0},
             {"the platform asks for the round again",
              {asksServer, again, Status(200)},
              0,
              {server, server},
              3,
              200},
             {"after receiving", {asksServer, againLater, Status(200)}, 0, {server, server}, 3, 200},
             {"and again, for ever", {again}, 22406, {}, 11, 0},
             {"login fails", {loginFails}, 22407, {}, 1, 0},
             {"login fails behind 401", {asksServer, loginFails}, 22412, {server}, 2, 0},
             {"login fails behind 407", {asksProxy, loginFails}, 22405, {proxy}, 2, 0},
             {"redirected on the same host",
              {asksServer, RedirectTo("/x"), Status(200)},
              0,
              {server, server},
              3,
              200},
             {"redirected to another port of the host",
              {asksServer, RedirectTo("http://gate.example:81/"), Status(200)},
              0,
              {server},
              3,
              200},
             {"redirected elsewhere",
              {asksServer, RedirectTo("http://other/"), Status(200)},
              0,
              {server},
              3,
              200},
             {"asked elsewhere",
              {asksServer, RedirectTo("http://other/"), asksServer, Status(200)},
              0,
              {server, server},
              4,
              200},
         }) {
        SCOPED_TRACE(row.name);
        Client http(row.rounds);
        http.client.settings.webAccount = {"web", "pw"};
        http.client.settings.proxyAccount = {"prox", "pp"};
        EXPECT_EQ(http.client.Request(kUrl).Number(), row.code);
        EXPECT_EQ(http.script.credentials, row.credentials);
        EXPECT_EQ(http.script.asked.size(), row.asked);
        EXPECT_EQ(http.client.Reply().status, row.status);
    }
    // What was told to a server in secret is not told it in clear, also on the same port.
    Client downgraded({asksServer, RedirectTo("http://gate.example:443/"), Status(200)});
    downgraded.client.settings.webAccount = {"web", "pw"};
    EXPECT_EQ(downgraded.client.Request("https://gate.example/").Number(), 0);
    EXPECT_EQ(downgraded.script.credentials, Lines{server});
    Client refused({asksServer});
    refused.client.settings.webAccount = {"web", "pw"};
    refused.script.credentialsError = 87;
    EXPECT_EQ(refused.client.Request(kUrl).Number(), 22412);
    Client refusedByProxy({asksProxy});
    refusedByProxy.client.settings.proxyAccount = {"prox", "pp"};
    refusedByProxy.script.credentialsError = 87;
    EXPECT_EQ(refusedByProxy.client.Request(kUrl).Number(), 22405);
}

TEST(HttpClient, TakesTheStrongestSchemeThatIsOffered) {
    struct Row {
        std::uint32_t offered;
        std::uint32_t chosen;
        const char* name;
    };
    for (const Row& row : std::vector<Row>{{31, 16, "NEGOTIATE"},
                                           {15, 2, "NTLM"},
                                           {13, 4, "PASSPORT"},
                                           {9, 8, "DIGEST"},
                                           {1, 1, "BASIC"}}) {
        const TemporaryFolder folder;
        Client http({{.status = 401, .offered = row.offered}, Status(200)});
        http.client.settings.webAccount = {"a", "b"};
        http.client.SetLogFile(folder.File("log.txt"));
        EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
        EXPECT_EQ(http.script.credentials, Lines{"server " + std::to_string(row.chosen) + " a:b"});
        const std::string log = folder.Read(folder.File("log.txt"));
        EXPECT_NE(log.find(std::string("HTTP AUTHENTICATION : ") + row.name), std::string::npos) << log;
    }
}

TEST(HttpClient, SaysWhatFailed) {
    struct Row {
        const char* name;
        std::uint32_t HttpScript::*global;
        std::uint32_t Round::*inRound;
        std::uint32_t error;
        std::int32_t code;
    };
    for (const Row& row : std::vector<Row>{
             {"no library", &HttpScript::loadError, nullptr, 126, 22390},
             {"no function", &HttpScript::loadError, nullptr, 127, 22426},
             {"session", &HttpScript::openError, nullptr, 87, 22401},
             {"connect", &HttpScript::connectError, nullptr, 87, 22404},
             {"request", &HttpScript::requestError, nullptr, 87, 22406},
             {"send: time", nullptr, &Round::sendError, 12002, 22410},
             {"send: name", nullptr, &Round::sendError, 12007, 22404},
             {"send: refused", nullptr, &Round::sendError, 12029, 22404},
             {"send: certificate", nullptr, &Round::sendError, 12175, 22406},
             {"send: else", nullptr, &Round::sendError, 12030, 22406},
             {"receive", nullptr, &Round::receiveError, 12030, 22407},
             {"receive: time", nullptr, &Round::receiveError, 12002, 22407},
             {"status", nullptr, &Round::statusError, 12150, 22408},
         }) {
        SCOPED_TRACE(row.name);
        Client http({Status(200)});
        if (row.global != nullptr) http.script.*row.global = row.error;
        if (row.inRound != nullptr) http.script.rounds[0].*row.inRound = row.error;
        EXPECT_EQ(http.client.Request(kUrl).Number(), row.code);
        EXPECT_EQ(http.client.SystemError(), row.error);
        EXPECT_EQ(http.client.Request(kUrl).Number(), row.code) << "again";
    }
    Client sizeFails({{.body = "abcdef", .piece = 3, .availableFailsAt = 3}});
    EXPECT_EQ(sizeFails.client.Request(kUrl).Number(), 22413);
    Client readFails({{.body = "abcdef", .piece = 3, .readFailsAt = 3}});
    EXPECT_EQ(readFails.client.Request(kUrl).Number(), 22415);
    EXPECT_EQ(readFails.client.Reply().body, "");
}

TEST(HttpClient, TheTimeHoldsForTheWholeRequest) {
    struct Row {
        const char* name;
        std::vector<Round> rounds;
        std::int32_t code;
    };
    const std::string body(1000, 'x');
    for (const Row& row : std::vector<Row>{
             {"connecting", {{.sendTime = 100'000}}, 22410},
             {"no answer", {{.receiveTime = 100'000}}, 22407},
             {"both slow", {{.sendTime = 20'000, .receiveTime = 20'000}}, 22407},
             {"one octet a second", {{.body = body, .pieceTime = 1000, .piece = 1}}, 22410},
             {"slow redirects",
              {{.status = 302, .headers = {{Header::kLocation, "/x"}}, .receiveTime = 7000}},
              22407},
         }) {
        SCOPED_TRACE(row.name);
        Client http(row.rounds);
        http.client.settings.timeout = 30;
        EXPECT_EQ(http.client.Request(kUrl).Number(), row.code);
        EXPECT_EQ(http.clock.Slept(), 30'000u);
    }
    Client patient({{.body = body, .receiveTime = 100'000, .pieceTime = 1000, .piece = 1}});
    patient.client.settings.timeout = 0xFFFFFFFF;
    EXPECT_EQ(patient.client.Request(kUrl).Number(), 0);
    EXPECT_EQ(patient.client.Reply().body, body);
}

TEST(HttpClient, KeepsWhatItIsToldOfReplies) {
    const std::string fault = "<fault/>";
    Client http({{.status = 500, .body = fault}});
    http.client.settings.keepErrorReplies = true;
    EXPECT_EQ(http.client.Request(kUrl).Number(), 22419);
    EXPECT_EQ(http.client.Reply().status, 500u);
    EXPECT_EQ(http.client.Reply().body, fault);

    Client wanted({{.status = 401, .body = fault}});
    wanted.client.settings.keepErrorReplies = true;
    EXPECT_EQ(wanted.client.Request(kUrl).Number(), 22412);
    EXPECT_EQ(wanted.client.Reply().body, fault);

    Client unreadable({{.status = 500, .body = fault, .piece = 3, .availableFailsAt = 3}});
    unreadable.client.settings.keepErrorReplies = true;
    EXPECT_EQ(unreadable.client.Request(kUrl).Number(), 22419);
    EXPECT_EQ(unreadable.client.Reply().body, fault.substr(0, 3));

    for (const std::size_t most : {std::size_t{0}, std::size_t{5}, std::size_t{6}, std::size_t{7}}) {
        Client bounded({{.body = "abcdef", .piece = 4}});
        bounded.client.settings.largestBody = most;
        EXPECT_EQ(bounded.client.Request(kUrl).Number(), 0);
        EXPECT_EQ(bounded.client.Reply().body, std::string("abcdef").substr(0, most));
    }
}

TEST(HttpClient, UsesASessionAgainUntilItIsToldOtherwise) {
    Client http({Status(200)});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
    EXPECT_EQ(http.script.sessions.size(), 1u);
    EXPECT_TRUE(http.script.keptAlive);
    http.client.settings.proxy = "proxy:3128";
    EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
    EXPECT_EQ(http.script.sessions.back(), std::string(CKorHttp::kUserAgent) + " proxy:3128");
    http.client.settings.keepAlive = false;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(http.client.Request(kUrl).Number(), 0);
    EXPECT_EQ(http.script.sessions.size(), 3u);
    EXPECT_FALSE(http.script.keptAlive);
}

TEST(HttpClient, WritesItsLog) {
    const TemporaryFolder folder;
    const std::string file = folder.File("log.txt");
    const auto logOf = [&](Client& http, const std::string& url) {
        std::filesystem::remove(file);
        http.client.SetLogFile(file);
        (void)http.client.Request(url);
        std::string lines;  // without the times and the empty lines between the entries
        std::istringstream log(folder.Read(file));
        for (std::string line; std::getline(log, line);) {
            if (!line.empty()) lines += line.substr(std::string("[22:13:20]  ").size()) + "\n";
        }
        return lines;
    };
    Client http({{.status = 401, .offered = http::kBasic},
                 RedirectTo("https://two.example/b"),
                 {.status = 200,
                  .headers = {{Header::kServer, "nginx"},
                              {Header::kVersion, "HTTP/1.1"},
                              {Header::kProxy, "1.1 cache"},
                              {Header::kStatusText, "OK"}}}});
    http.client.settings.webAccount = {"web", "secret"};
    http.client.settings.postText = std::string(256, 'x');
    const std::string body(256, 'x');
    EXPECT_EQ(logOf(http, "http://one.example/a"),
              "HTTP PROXY SERVER   : NONE\n"
              "HTTP REQUESTTIMEOUT : 60 SECS\n"
              "HTTP KEEP ALIVE     : ENABLED\n"
              "HTTP CONNECT        : http://one.example/a\n"
              "HTPP TIMEOUT        : 60 seconds\n"
              "USING SSL           : NO\n"
              "POST DATA           : " +
                  body +
                  "\n"
                  "HTTP RESPONSE CODE  : 401\n"
                  "HTTP AUTHENTICATION : BASIC\n"
                  "HTTP WEB ACCOUNT    : web\n"
                  "POST DATA           : " +
                  body +
                  "\n"
                  "HTTP RESPONSE CODE  : 302\n"
                  "REDIRECTING TO      : https://two.example/b\n"
                  "USING SSL           : YES\n"
                  "HTTP PROXY SERVER   : NONE\n"
                  "HTTP REQUESTTIMEOUT : 60 SECS\n"
                  "HTTP KEEP ALIVE     : ENABLED\n"
                  "POST DATA           : " +
                  body +
                  "\n"
                  "HTTP REMOTE SERVER  : nginx\n"
                  "HTTP REMOTE VERSION : HTTP/1.1\n"
                  "HTTP PROXY SERVER   : 1.1 cache\n"
                  "HTTP RESPONSE TEXT  : OK\n"
                  "HTTP RESPONSE CODE  : 200\n");

    Client longer({{.status = 407, .offered = http::kNtlm}, Status(404)});
    longer.client.settings.proxy = "proxy:3128";
    longer.client.settings.proxyAccount = {"prox", "secret"};
    longer.client.settings.keepAlive = false;
    longer.client.settings.timeout = 5;
    const std::string large(257, 'x');
    longer.client.settings.postText = large;
    EXPECT_EQ(logOf(longer, "https://one.example/a"),
              "HTTP PROXY SERVER   : proxy:3128\n"
              "HTTP REQUESTTIMEOUT : 5 SECS\n"
              "HTTP KEEP ALIVE     : DISABLED\n"
              "HTTP CONNECT        : https://one.example/a\n"
              "HTPP TIMEOUT        : 5 seconds\n"
              "USING SSL           : YES\n"
              "POST DATA           : [257 Bytes]\n"
              "HTTP RESPONSE CODE  : 407\n"
              "HTTP AUTHENTICATION : NTLM\n"
              "HTTP PROXY ACCOUNT  : prox\n"
              "POST DATA           : [257 Bytes]\n"
              "HTTP RESPONSE CODE  : 404\n");

    Client untrusted({{.sendError = http::kSecureFailure}});
    untrusted.script.certificateFault = "the certificate is out of date";
    const std::string log = logOf(untrusted, "https://one.example/a");
    EXPECT_NE(log.find("system error 12175, the certificate is out of date\n"), std::string::npos) << log;

    Client missing({Status(200)});
    missing.script.loadError = 126;
    EXPECT_EQ(logOf(missing, kUrl), "LoadLibrary [winhttp.dll], result: [0x0000007E]\n");
}

}  // namespace
