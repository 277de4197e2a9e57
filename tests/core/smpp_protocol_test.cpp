// The channel's own checks and its provider files; no server is needed.
#include "foundation/ErrorTexts.h"
#include "smpp/SmppProtocol.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

TEST(SmppProtocol, RefusesWhatCannotBeConnected) {
    CSmppProtocol smpp;
    for (const std::int32_t port : {0, -1, 65536}) {
        smpp.settings.serverPort = port;
        EXPECT_EQ(smpp.Connect(), 22019);
    }
    smpp.settings.serverPort = 1;
    EXPECT_EQ(smpp.Connect(), 22021);
    smpp.settings.server = "127.0.0.1";  // nothing listens there
    smpp.settings.serverTimeout = 2000;
    EXPECT_EQ(smpp.Connect(), 33201);
    EXPECT_FALSE(smpp.IsConnected());
    std::string references;
    EXPECT_EQ(smpp.Send({}, references), 33205);
    CSmsDeliveryReport report;
    EXPECT_EQ(smpp.QueryStatus("", false, report), 34050);
    EXPECT_EQ(smpp.QueryStatus("x", true, report), 34050);
}

TEST(SmppProtocol, ClearForgetsReportsMessagesAndSettings) {
    const TemporaryFolder folder;
    CSmppProtocol smpp;
    smpp.settings.server = "host";
    smpp.settings.serverPort = 1;
    smpp.SetAdvancedSettings("SmppWindowSize=25");
    smpp.SetLogFile(folder.File("log"));
    smpp.Reports().RecordSent("00000001", ReportWanted::kSubmitRequested);
    smpp.Received().Add({});
    smpp.Clear();
    CSmsDeliveryReport report;
    EXPECT_EQ(smpp.QueryStatus("00000001", false, report), 34050);
    EXPECT_EQ(smpp.Received().Count(), 0U);
    EXPECT_EQ(smpp.settings.server + smpp.AdvancedSettings() + smpp.LogFile(), "");
    EXPECT_EQ(smpp.settings.serverPort, 2775);
}

TEST(SmppProtocol, AConnectThatFailsLeavesItsTrace) {
    const TemporaryFolder folder;
    VirtualClock clock;
    CSmppProtocol smpp(clock);
    smpp.SetLogFile(folder.File("log"));
    smpp.SetActivityFile(folder.File("activity"));
    smpp.settings.server = "no.such.host.invalid";
    EXPECT_EQ(smpp.Connect(), 33201);
    const std::string why(DescribeError(33201));
    EXPECT_NE(TemporaryFolder::Read(folder.File("log"))
                  .find("Failed to connect server no.such.host.invalid ( " + why + " )\n"),
              std::string::npos);
    const std::string activity = TemporaryFolder::Read(folder.File("activity"));
    EXPECT_NE(activity.find("Server=[no.such.host.invalid:2775]"), std::string::npos);
    EXPECT_TRUE(activity.ends_with("Result = [" + why + "]\n"));
}

constexpr const char* kProvider =
    "[Provider]\nServer=host\nSystemID=id\nSystemPassword=secret\nSystemType=type\n"
    "SystemSourceAddress=1234\nAddressRange=31*\nServerPort=1\nServerTimeout=2\nServerKeepAlive=3\n"
    "SystemVersion=80\nSystemSourceTON=4\nSystemSourceNPI=5\nSystemDestinationTON=6\n"
    "SystemDestinationNPI=7\nSystemThroughput=8\nSystemCharSet=9\nDeliveryReportFormat=10\n"
    "AdvancedSettings=SmppWindowSize=25\nSystemTLVRecords=523;;2;;2948||30;;4;;text||\n";

TEST(SmppProtocol, KeepsItsSettingsInAProviderFile) {
    VirtualClock clock;
    const TemporaryFolder folder;
    TemporaryFolder::Write(folder.File("in.ini"), kProvider);
    CSmppProtocol smpp(clock);
    ASSERT_EQ(smpp.LoadConfig(folder.File("in.ini")), 0);
    const SmppSettings& s = smpp.settings;
    EXPECT_EQ(s.server, "host");
    EXPECT_EQ(s.systemId, "id");
    EXPECT_EQ(s.systemPassword, "secret");
    EXPECT_EQ(s.systemType, "type");
    EXPECT_EQ(s.sourceAddress, "1234");
    EXPECT_EQ(s.addressRange, "31*");
    EXPECT_EQ(s.serverPort, 1);
    EXPECT_EQ(s.serverTimeout, 2);
    EXPECT_EQ(s.serverKeepAlive, 3);
    EXPECT_EQ(s.systemVersion, 0x50);
    EXPECT_EQ(s.sourceTon, 4);
    EXPECT_EQ(s.sourceNpi, 5);
    EXPECT_EQ(s.destinationTon, 6);
    EXPECT_EQ(s.destinationNpi, 7);
    EXPECT_EQ(s.throughput, 8);
    EXPECT_EQ(s.charSet, 9);
    EXPECT_EQ(s.reportFormat, 10);
    EXPECT_EQ(smpp.AdvancedSetting("SmppWindowSize", 0), 25);
    EXPECT_EQ(s.transmitTlvs.Find(0x020B)->wordValue, 2948);
    EXPECT_EQ(s.transmitTlvs.Find(0x001E)->text, u"text");

    const std::string out = folder.File("out.ini");
    smpp.SetLogFile(folder.File("log.txt"));
    EXPECT_EQ(smpp.SaveConfig(out), 0);
    EXPECT_EQ(TemporaryFolder::Read(out), kProvider);
    EXPECT_EQ(smpp.SaveConfig(""), 33052);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("log.txt")),
              "[22:13:20]  Saving SMPP settings to file [" + out +
                  "], result: 0 : Success\n\n[22:13:20]  Saving SMPP settings to file [], result: 33052 : " +
                  std::string(DescribeError(33052)) + "\n\n");

    // What a file does not name stays.
    TemporaryFolder::Write(folder.File("short.ini"), "[Provider]\nServerPort=\nSystemType=\n");
    EXPECT_EQ(smpp.LoadConfig(folder.File("short.ini")), 0);
    EXPECT_EQ(s.server, "host");
    EXPECT_EQ(s.serverPort, 1);
    EXPECT_EQ(s.systemType, "");
    EXPECT_EQ(smpp.AdvancedSettings(), "SmppWindowSize=25");
    EXPECT_EQ(s.transmitTlvs.size(), 2U);
}

}  // namespace
