// A dial-up connection over a scripted platform, in virtual time.
#include "foundation/ras/KorRas.h"
#include "support/ScriptedRas.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;
using States = std::deque<RasScript::Status>;
using Ticks = std::vector<std::uint32_t>;

constexpr std::uint32_t kDialling = 3;  // a state on the way to the connected one
constexpr std::uint32_t kNone = 0xFFFFFFFF;

struct Link {
    explicit Link(bool load = true) {
        if (load) EXPECT_EQ(ras.Load(), 0);
        script.calls.clear();
    }

    VirtualClock clock;
    RasScript script{clock};
    CKorRas ras{clock, std::make_unique<ScriptedRas>(script)};
};

// An address in the order of the network.
std::uint32_t Address(const char* text) { return ::inet_addr(text); }

TEST(Ras, AsksForWhatIsMissingAtEachLoad) {
    Link link(false);
    link.script.isComplete = false;
    EXPECT_EQ(link.ras.Load(), 22026);
    EXPECT_FALSE(link.ras.IsLoaded());
    link.script.isComplete = true;
    EXPECT_EQ(link.ras.Load(), 0);
    EXPECT_EQ(link.ras.Load(), 0);
    EXPECT_TRUE(link.ras.IsLoaded());
    EXPECT_EQ(link.script.calls, (Calls{"Load", "Load"}));
}

TEST(Ras, DoesNothingBeforeLoad) {
    Link link(false);
    bool connected = true;
    EXPECT_EQ(link.ras.Dial("entry", 20'000), -1);
    EXPECT_EQ(link.ras.GetStatus(connected), -1);
    EXPECT_FALSE(connected);
    EXPECT_EQ(link.ras.HangUp(), -1);
    EXPECT_TRUE(link.script.calls.empty());
    link.script.isComplete = false;
    EXPECT_EQ(link.ras.AddHostRoute("10.0.0.1", "x"), 22026);
    EXPECT_EQ(link.script.calls, Calls{"Load"});
}

TEST(Ras, WritesAnEntry) {
    struct Row {
        std::uint32_t contextId;
        const char* dialString;
    };
    for (const Row& row : std::vector<Row>{{0, "*99#"}, {1, "*99***1#"}, {16, "*99***16#"}}) {
        Link link;
        EXPECT_EQ(link.ras.CreateEntry({"MMS on M", "M", "user", "word", row.contextId}), 0);
        EXPECT_EQ(link.script.calls, (Calls{"SetEntryProperties", "SetDialParameters"}));
        EXPECT_EQ(link.script.entryNames, Calls{"MMS on M"});
        const ras::EntryProperties& properties = link.script.properties.at(0);
        EXPECT_EQ(properties.device, "M");
        EXPECT_EQ(properties.deviceType, "modem");
        EXPECT_EQ(properties.phoneNumber, row.dialString);
        EXPECT_EQ(properties.options, 0x100u);
        EXPECT_EQ(properties.protocols, 4u);
        EXPECT_EQ(properties.framing, 1u);
        const ras::DialParameters& written = link.script.written.at(0);
        EXPECT_EQ(written.entry, "MMS on M");
        EXPECT_EQ(written.user, "user");
        EXPECT_EQ(written.password, "word");
        EXPECT_EQ(written.domain + written.callbackNumber + written.phoneNumber, "");
    }
}

TEST(Ras, TellsWhyAnEntryCouldNotBeWritten) {
    const TemporaryFolder folder;
    struct Row {
        std::uint32_t propertiesCode, parametersCode;
        std::string log;
        std::size_t calls;
    };
    for (const Row& row : std::vector<Row>{{0, 0, "", 2}, {623, 0, "623", 1}, {0, 5, "5", 2}}) {
        SCOPED_TRACE(row.log);
        Link link;
        const std::string log = folder.File(row.log + "ras.log"), activity = folder.File(row.log + "ras.txt");
        link.ras.SetLogFile(log);
        link.ras.SetActivityFile(activity);
        link.script.propertiesCode = row.propertiesCode;
        link.script.parametersCode = row.parametersCode;
        const bool fails = !row.log.empty();
        EXPECT_EQ(link.ras.CreateEntry({"E", "M", "", "", 3}), fails ? 33711 : 0);
        EXPECT_EQ(link.script.calls.size(), row.calls);

        const std::string error = "Error creating DUN entry, RAS Error " + row.log + ".";
        const std::string logged = TemporaryFolder::Read(log), active = TemporaryFolder::Read(activity);
        EXPECT_NE(logged.find("Creating DUN entry 'E'\n"), std::string::npos) << logged;
        EXPECT_NE(logged.find("Dialstring used for DUN entry: *99***3#\n"), std::string::npos) << logged;
        EXPECT_EQ(logged.find(error) != std::string::npos, fails) << logged;
        EXPECT_NE(active.find("Creating DUN entry 'E'"), std::string::npos) << active;
        EXPECT_EQ(active.find("Dialstring"), std::string::npos) << active;
        EXPECT_EQ(active.find(error) != std::string::npos, fails) << active;
    }
}

TEST(Ras, KeepsFieldsToTheirLengthAndToOneLine) {
    Link link;
    const std::string longer(300, 'n');
    EXPECT_EQ(link.ras.CreateEntry({longer, longer, longer, longer, 0}), 0);
    EXPECT_EQ(link.script.entryNames.at(0).size(), 256u);
    EXPECT_EQ(link.script.properties.at(0).device.size(), 128u);
    EXPECT_EQ(link.script.written.at(0).user.size(), 256u);
    EXPECT_EQ(link.script.written.at(0).password.size(), 256u);

    link.ras.SetCredentials(longer, longer);
    EXPECT_EQ(link.ras.Dial(longer, 20'000), 0);
    EXPECT_EQ(link.script.dialled.at(0).entry.size(), 256u);
    EXPECT_EQ(link.script.dialled.at(0).user.size(), 256u);
    EXPECT_EQ(link.script.dialled.at(0).password.size(), 256u);

    EXPECT_EQ(link.ras.CreateEntry({"a\r\nb", "c\n[d]", std::string("e\0f", 3), "", 0}), 0);
    EXPECT_EQ(link.script.entryNames.at(1), "a  b");
    EXPECT_EQ(link.script.properties.at(1).device, "c [d]");
    EXPECT_EQ(link.script.written.at(1).user, "e f");
}

TEST(Ras, DialsWithThePhonebooksParametersAndItsOwnCredentials) {
    Link link;
    link.script.stored = {"", "*99#", "cb", "other", "secret", "dom", 2};
    link.ras.SetCredentials("user", "word");
    EXPECT_EQ(link.ras.Dial("E", 20'000), 0);
    const ras::DialParameters& dialled = link.script.dialled.at(0);
    EXPECT_EQ(dialled.entry, "E");
    EXPECT_EQ(dialled.phoneNumber, "*99#");
    EXPECT_EQ(dialled.callbackNumber, "cb");
    EXPECT_EQ(dialled.user, "user");
    EXPECT_EQ(dialled.password, "word");
    EXPECT_EQ(dialled.domain, "dom");
    EXPECT_EQ(dialled.subEntry, 2u);
}

TEST(Ras, WaitsForTheLink) {
    struct Row {
        const char* name;
        std::uint32_t timeout;
        std::uint32_t getCode, dialCode, dialTime;
        ras::Handle handle;
        States states;
        std::int32_t code;
        Ticks askedAt;
        bool holds;
        std::uint64_t time;
    };
    const RasScript::Status up{}, dialling{kDialling};
    for (const Row& row : std::vector<Row>{
             {"at once", 20'000, 0, 0, 0, 7, {up}, 0, {0}, true, 0},
             {"later", 20'000, 0, 0, 100, 7, {dialling, dialling, up}, 0, {100, 600, 1100}, true, 1100},
             {"never", 1200, 0, 0, 0, 7, {dialling}, 31678, {0, 500, 1000}, true, 1500},
             {"just not", 1000, 0, 0, 0, 7, {dialling, dialling, up}, 31678, {0, 500}, true, 1000},
             {"no time", 0, 0, 0, 0, 7, {up}, 31678, {}, true, 0},
             {"all time dialled away", 20'000, 0, 0, 20'000, 7, {up}, 31678, {}, true, 20'000},
             {"time left after dialling", 20'000, 0, 0, 19'999, 7, {up}, 0, {19'999}, true, 19'999},
             {"link fails", 20'000, 0, 0, 0, 7, {dialling, {8193, 668}}, 668, {0, 500}, true, 500},
             {"no entry", 20'000, 623, 0, 0, 7, {up}, 623, {}, false, 0},
             {"refused", 20'000, 0, 678, 30'000, 7, {up}, 678, {}, true, 30'000},
             {"refused without a handle", 20'000, 0, 633, 0, 0, {up}, 633, {}, false, 0},
             {"beyond the numbers of the service",
              20'000,
              0,
              0x80070005,
              0,
              0,
              {up},
              -2147024891,
              {},
              false,
              0},
             {"other state above the connected one", 500, 0, 0, 0, 7, {{8193}}, 31678, {0}, true, 500},
         }) {
        SCOPED_TRACE(row.name);
        Link link;
        link.script.getCode = row.getCode;
        link.script.dialCode = row.dialCode;
        link.script.dialTime = row.dialTime;
        link.script.handle = row.handle;
        link.script.states = row.states;
        EXPECT_EQ(link.ras.Dial("E", row.timeout), row.code);
        EXPECT_EQ(link.script.askedAt, row.askedAt);
        EXPECT_EQ(link.ras.IsConnected(), row.holds);
        EXPECT_EQ(link.clock.Slept(), row.time);
    }
}

TEST(Ras, TellsWhetherTheLinkIsUp) {
    struct Row {
        RasScript::Status status;
        std::int32_t code;
        bool connected;
    };
    for (const Row& row : std::vector<Row>{
             {{0x2000, 0}, 0, true}, {{0x2001, 0}, 0, false}, {{0, 0}, 0, false}, {{0x2000, 6}, 6, false}}) {
        Link link;
        bool connected = true;
        EXPECT_EQ(link.ras.GetStatus(connected), 0);
        EXPECT_FALSE(connected) << "without a connection";
        (void)link.ras.Dial("E", 0);
        link.script.states = {row.status};
        EXPECT_EQ(link.ras.GetStatus(connected), row.code);
        EXPECT_EQ(connected, row.connected);
    }
}

TEST(Ras, HangsUpUntilTheConnectionIsGone) {
    struct Row {
        const char* name;
        States states;
        std::uint32_t hangUpCode;
        std::uint64_t time;
        std::size_t asked;
    };
    const RasScript::Status gone{0, 6}, still{};
    for (const Row& row : std::vector<Row>{{"gone at once", {gone}, 0, 0, 1},
                                           {"gone later", {still, {8193}, gone}, 0, 1000, 3},
                                           {"never gone", {still}, 0, 10'000, 20},
                                           {"not known", {gone}, 668, 0, 1}}) {
        SCOPED_TRACE(row.name);
        Link link;
        EXPECT_EQ(link.ras.HangUp(), 0);
        EXPECT_TRUE(link.script.calls.empty()) << "without a connection";
        EXPECT_EQ(link.ras.Dial("E", 20'000), 0);
        link.script.askedAt.clear();
        link.script.statesAfterHangUp = row.states;
        link.script.hangUpCode = row.hangUpCode;
        EXPECT_EQ(link.ras.HangUp(), 0);
        EXPECT_EQ(link.script.hungUp, std::vector<ras::Handle>{7});
        EXPECT_EQ(link.clock.Slept(), row.time);
        EXPECT_EQ(link.script.askedAt.size(), row.asked);
        EXPECT_FALSE(link.ras.IsConnected());
        EXPECT_EQ(link.ras.HangUp(), 0);
        EXPECT_EQ(link.script.hungUp.size(), 1u);
    }
}

TEST(Ras, HangsUpWhatAFailedDialLeftBeforeTheNext) {
    Link link;
    link.script.dialCode = 678;
    EXPECT_EQ(link.ras.Dial("E", 20'000), 678);
    EXPECT_TRUE(link.ras.IsConnected());
    link.script.dialCode = 0;
    link.script.handle = 8;
    link.script.calls.clear();
    EXPECT_EQ(link.ras.Dial("E", 20'000), 0);
    EXPECT_EQ(link.script.calls, (Calls{"HangUp", "GetDialParameters", "Dial"}));
    EXPECT_EQ(link.ras.HangUp(), 0);
    EXPECT_EQ(link.script.hungUp, (std::vector<ras::Handle>{7, 8}));
}

TEST(Ras, TheTimeOfADialIsThatOfHangingUpToo) {
    Link link;
    link.script.dialCode = 678;
    EXPECT_EQ(link.ras.Dial("E", 20'000), 678);
    link.script.dialCode = 0;
    link.script.states = {{kDialling}};
    link.script.statesAfterHangUp = {{}, {}, {0, 6}};  // gone after 1000 ms
    EXPECT_EQ(link.ras.Dial("E", 2000), 31678);
    EXPECT_EQ(link.script.askedAt, (Ticks{0, 500, 1000, 1000, 1500}));
    EXPECT_EQ(link.clock.Slept(), 2000u);
}

TEST(Ras, LeavesTheConnectionUpWhenItGoes) {
    VirtualClock clock;
    RasScript script(clock);
    {
        CKorRas ras(clock, std::make_unique<ScriptedRas>(script));
        EXPECT_EQ(ras.Load(), 0);
        EXPECT_EQ(ras.Dial("E", 20'000), 0);
    }
    EXPECT_TRUE(script.hungUp.empty());
}

TEST(Ras, RoutesAHostThroughTheLastAdapterThatFits) {
    const ras::Adapter lan{"Network card", 1, "192.168.0.2"}, ppp{"WAN (PPP/SLIP)", 2, "10.1.0.2"},
        otherPpp{"PPP adapter", 3, "10.1.0.3"}, modem{"MMS on M", 4, "10.1.0.4"}, bare{"PPP", 5, ""};
    struct Row {
        const char* name;
        std::vector<ras::Adapter> adapters;
        std::uint32_t index;
        const char* address;
    };
    for (const Row& row : std::vector<Row>{
             {"none", {}, 0, "0.0.0.0"},
             {"none that fits", {lan, {"ppp in small letters", 9, "10.9.0.9"}}, 0, "0.0.0.0"},
             {"by PPP", {ppp, lan}, 2, "10.1.0.2"},
             {"later of two", {ppp, otherPpp, lan}, 3, "10.1.0.3"},
             {"by its text", {lan, modem}, 4, "10.1.0.4"},
             {"by its text before PPP", {modem, ppp}, 2, "10.1.0.2"},
             {"by its text behind PPP", {ppp, modem}, 4, "10.1.0.4"},
             {"without an address", {ppp, bare}, 5, "0.0.0.0"},
         }) {
        SCOPED_TRACE(row.name);
        Link link;
        link.script.adapters = row.adapters;
        EXPECT_EQ(link.ras.AddHostRoute("10.0.0.1", "on M"), 0);
        const ras::Route& route = link.script.created.at(0);
        EXPECT_EQ(route.interfaceIndex, row.index);
        EXPECT_EQ(route.nextHop, Address(row.address));
        EXPECT_EQ(route.destination, Address("10.0.0.1"));
        EXPECT_EQ(route.mask, 0xFFFFFFFFu);
        EXPECT_EQ(route.policy + route.age + route.nextHopSystem, 0u);
        EXPECT_EQ(route.type, 3u);
        EXPECT_EQ(route.protocol, 3u);
        EXPECT_EQ(route.metric1, 1u);
        for (const std::uint32_t metric : {route.metric2, route.metric3, route.metric4, route.metric5}) {
            EXPECT_EQ(metric, kNone);
        }
    }
}

TEST(Ras, TakesTheAddressOfAHost) {
    struct Row {
        const char* host;
        std::uint32_t destination;
    };
    for (const Row& row : std::vector<Row>{{"10.0.0.1", Address("10.0.0.1")},
                                           {"http://10.0.0.1", Address("10.0.0.1")},
                                           {"HTTP://10.0.0.1", Address("10.0.0.1")},
                                           {"HttpS://10.0.0.1", Address("10.0.0.1")},
                                           {"wap.example", kNone},
                                           {"10.0.0.1:8080", kNone},
                                           {"http://http://10.0.0.1", kNone},
                                           {"http://https://10.0.0.1", kNone},
                                           {"", kNone}}) {
        Link link;
        link.script.routeCode = 87;
        EXPECT_EQ(link.ras.AddHostRoute(row.host, "x"), 87);
        EXPECT_EQ(link.script.created.at(0).destination, row.destination) << row.host;
    }
}

TEST(Ras, CountsTheMetricOneUp) {
    struct Row {
        std::vector<std::uint32_t> metrics;
        std::uint32_t metric;
    };
    for (const Row& row : std::vector<Row>{{{}, 1}, {{25}, 26}, {{25, 281, 30}, 282}, {{kNone, 25}, 26}}) {
        Link link;
        for (const std::uint32_t metric : row.metrics) link.script.routes.push_back({.metric1 = metric});
        link.script.routeBuffer.needs = {4000};
        EXPECT_EQ(link.ras.AddHostRoute("10.0.0.1", "x"), 0);
        EXPECT_EQ(link.script.created.at(0).metric1, row.metric);
    }
}

TEST(Ras, GivesAdaptersTheRoomTheyAskFor) {
    struct Row {
        const char* name;
        RasScript::Buffer buffer;
        std::vector<std::uint32_t> sizes;
        std::uint32_t index;
    };
    for (const Row& row : std::vector<Row>{
             {"enough", {}, {704}, 2},
             {"grows once", {{1408}}, {704, 1408}, 2},
             {"grows meanwhile", {{1408, 2112}}, {704, 1408, 2112}, 2},
             {"always more", {{1408, 2112, 2816, 3520, 4224}}, {704, 1408, 2112, 2816}, 0},
             {"more than can be", {{0xFFFFFFF0}}, {704}, 0},
             {"none", {{}, 232}, {704}, 0},
         }) {
        SCOPED_TRACE(row.name);
        Link link;
        link.script.adapters = {{"PPP", 2, "10.1.0.2"}};
        link.script.adapterBuffer = row.buffer;
        EXPECT_EQ(link.ras.AddHostRoute("10.0.0.1", "x"), 0);
        EXPECT_EQ(link.script.sizes, row.sizes);
        EXPECT_EQ(link.script.created.at(0).interfaceIndex, row.index);
    }
}

TEST(Ras, IsMissingHere) {
    CKorRas ras;
    EXPECT_EQ(ras.Load(), 22026);
    EXPECT_EQ(ras.CreateEntry({"E", "M", "", "", 0}), 33711);
}

}  // namespace
