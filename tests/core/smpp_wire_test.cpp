// What the SMPP session puts on the wire, octet by octet, and what it makes of answers that mean no success.
#include "smpp/SmppSession.h"
#include "smpp/SmppStatus.h"
#include "smpp/SmppSubmit.h"
#include "support/Octets.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

class Wire : public testing::Test {
  protected:
    std::string Take() {
        std::string octets;
        octets.swap(session.Output());
        return HexOf(octets);
    }
    void Hear(std::string_view pattern) { session.OnBytes(OctetText(pattern)); }
    void Bind() {
        session.StartBind();
        (void)Take();
        Hear("00000011 80000009 00000000 00000001 00");
        ASSERT_EQ(session.GetState(), CSmppSession::State::kBound);
    }
    std::int32_t Submit(const std::string& answer) {
        reports.RecordSent("ref", ReportWanted::kSubmitRequested);
        session.Queue({std::string(16, '\0'), "ref", true});
        session.OnTick();
        (void)Take();
        Hear(answer);
        return reports.Query("ref")->status;
    }

    VirtualClock clock;
    CKorBase log{"Test", clock};
    SmppSettings settings;
    CSmsDeliveryReports reports{clock};
    CSmsMessagesX received{clock, 3600};
    CSmppSession session{log, settings, reports, received, clock};
};

TEST_F(Wire, TheBindHasEveryField) {
    settings.systemId = "me";
    settings.systemPassword = "pw";
    settings.systemType = "t";
    settings.sourceTon = 5;
    settings.sourceNpi = 9;
    settings.addressRange = "12";
    CTLVRecord record;
    record.tag = 0x020A;
    record.type = TLVType::kWord;
    record.SetInteger(0x1234);
    settings.transmitTlvs.AddOrReplace(record);
    for (const auto& [mode, command] : {std::pair{0, "00000009"}, {1, "00000002"}, {2, "00000001"}}) {
        settings.systemMode = mode;
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        EXPECT_EQ(HexOf(other.Output()),
                  std::string("00000024") + command + "0000000000000001" +
                      HexOf(OctetText("'me' 00 'pw' 00 't' 00 34 05 09 '12' 00 020A 0002 1234")));
    }
}

TEST_F(Wire, VersionsAreOctets) {
    for (const auto& [version, octet] : {std::pair{0x33, 0x33},
                                         {33, 0x33},
                                         {0x34, 0x34},
                                         {34, 0x34},
                                         {0x50, 0x50},
                                         {50, 0x50},
                                         {0x35, 0},
                                         {0, 0}}) {
        settings.systemVersion = version;
        EXPECT_EQ(settings.InterfaceVersion(), octet) << version;
    }
}

TEST_F(Wire, TheUnbindIsAnsweredBeforeTheSessionEnds) {
    Bind();
    Hear("00000010 80000006 00000000 00000002");  // nobody has asked for it
    EXPECT_EQ(session.GetState(), CSmppSession::State::kBound);
    session.StartUnbind();
    EXPECT_EQ(Take(), "00000010000000060000000000000002");
    Hear("00000010 80000006 00000000 00000002");
    EXPECT_EQ(session.GetState(), CSmppSession::State::kClosed);
}

TEST_F(Wire, RefusalsAreNoSuccess) {
    Bind();
    const TemporaryFolder folder;
    log.SetActivityFile(folder.File("activity"));
    EXPECT_EQ(Submit("00000010 80000000 00000003 00000002"), sms::asDELIVERYSTATUS_REJECTED);
    EXPECT_NE(TemporaryFolder::Read(folder.File("activity")).find("Sending failed ("), std::string::npos);
    EXPECT_EQ(Submit("00000010 80000000 00000000 00000003"), sms::asDELIVERYSTATUS_REJECTED);
    for (const auto& [status, code] : {std::pair{0x00U, 0},
                                       {0x0AU, 33216},
                                       {0x0BU, 33216},
                                       {0x14U, 33217},
                                       {0x48U, 33216},
                                       {0x49U, 33216},
                                       {0x50U, 33216},
                                       {0x51U, 33216},
                                       {0x58U, 33217},
                                       {0x401U, 33225},
                                       {0x402U, 33225},
                                       {0x08U, 33215}}) {
        EXPECT_EQ(SubmitResultOf(status), code) << status;
    }
}

TEST_F(Wire, MessagesWithAnErrorAreAnsweredButNotTaken) {
    Bind();
    Hear("00000021 00000005 00000008 00000007 00 0101 00 0101 00 000000 00 00 00 00 00 00 00");
    EXPECT_EQ(Take(),
              "00000011800000050000000000000007"
              "00");
    EXPECT_EQ(received.Count(), 0U);
}

TEST_F(Wire, EachDataMessageGetsAReferenceOfItsOwn) {
    Bind();
    Hear("0000001A 00000103 00000000 00000007 00 0101 00 0101 00 00 00 00");
    const std::string first = Take();
    Hear("0000001A 00000103 00000000 00000008 00 0101 00 0101 00 00 00 00");
    const std::string second = Take();
    ASSERT_EQ(first.size(), 2 * (16 + 9U));
    EXPECT_NE(first.substr(32), second.substr(32));
    EXPECT_EQ(received.Count(), 2U);
}

TEST_F(Wire, ReportsAreAskedForAndPartsEndAt255) {
    SmppSubmitBuilder builder(clock);
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    std::vector<std::string> pdus;
    for (const auto& [wanted, octet] : {std::pair{false, 0}, {true, 1}}) {
        message.Data = u"a";
        message.RequestDeliveryStatus = wanted;
        ASSERT_EQ(builder.Build(settings, message, pdus), 0);
        CSmppSubmitSm pdu;
        pdu.SetData({reinterpret_cast<const std::uint8_t*>(pdus[0].data()), pdus[0].size()});
        pdu.Decode();
        EXPECT_EQ(pdu.registered_delivery, octet);
    }
    constexpr std::size_t kPart = 153;
    message.Format = sms::asMESSAGEFORMAT_TEXT_MULTIPART;
    for (const auto& [size, code] : {std::pair{255 * kPart, 0}, {255 * kPart + 1, 34033}}) {
        message.Data.assign(size, u'a');
        EXPECT_EQ(builder.Build(settings, message, pdus), code) << size;
    }
}

}  // namespace
