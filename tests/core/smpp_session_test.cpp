// The session as a machine: scripted octets in, octets and events out, in virtual time.
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "smpp/SmppSession.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

std::string Pdu(std::uint32_t command, std::uint32_t status, std::uint32_t sequence,
                const std::string& body = {}) {
    std::string octets;
    for (const std::uint32_t word :
         {static_cast<std::uint32_t>(16 + body.size()), command, status, sequence}) {
        for (int shift = 24; shift >= 0; shift -= 8) octets.push_back(static_cast<char>(word >> shift));
    }
    return octets + body;
}

std::string Deliver(std::uint32_t sequence, const std::string& text, char esm = 0) {
    using namespace std::string_literals;
    return Pdu(5, 0, sequence,
               "\0\x01\x01"
               "31611111111\0\x01\x01"
               "1234\0"s +
                   esm + "\0\0\0\0\0\0\0\0"s + static_cast<char>(text.size()) + text);
}

// Optional parameters, and their addition to a PDU.
std::string Tlv(std::uint16_t tag, const std::string& value) {
    std::string octets;
    for (const std::size_t word : {std::size_t{tag}, value.size()}) {
        octets.push_back(static_cast<char>(word >> 8));
        octets.push_back(static_cast<char>(word));
    }
    return octets + value;
}
std::string ReceiptedId(const std::string& id) { return Tlv(0x1E, id + std::string(1, '\0')); }
std::string State(char state) { return Tlv(0x427, {state}); }
std::string WithTlvs(std::string pdu, const std::string& tlvs) {
    pdu += tlvs;
    pdu[2] = static_cast<char>(pdu.size() >> 8);
    pdu[3] = static_cast<char>(pdu.size());
    return pdu;
}

struct Sent {
    std::uint32_t command, status, sequence;
    bool operator==(const Sent&) const = default;
};

class Session : public testing::Test {
  protected:
    std::vector<Sent> TakeOutput() {
        std::vector<Sent> sent;
        std::string& out = session.Output();
        const auto word = [&out](std::size_t at) {
            std::uint32_t value = 0;
            for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(out[at + i]);
            return value;
        };
        for (std::size_t at = 0; at < out.size(); at += word(at))
            sent.push_back({word(at + 4), word(at + 8), word(at + 12)});
        out.clear();
        return sent;
    }
    void Bind() {
        session.StartBind();
        EXPECT_EQ(TakeOutput(), (std::vector<Sent>{{9, 0, 1}}));
        session.OnBytes(Pdu(0x80000009, 0, 1, std::string("lab\0", 4)));
        ASSERT_EQ(session.GetState(), CSmppSession::State::kBound);
    }
    void Queue(const std::string& reference, bool report = true) {
        reports.RecordSent(reference, ReportWanted::kSubmitRequested);
        session.Queue({Pdu(4, 0, 0, "body"), reference, report});
    }
    std::int32_t Status(const std::string& reference) { return reports.Query(reference)->status; }
    void Response(std::uint32_t sequence, const std::string& id, std::uint32_t status = 0) {
        session.OnBytes(Pdu(0x80000004, status, sequence, id + std::string(1, '\0')));
    }

    VirtualClock clock;
    CKorBase log{"Test", clock};
    SmppSettings settings;
    CSmsDeliveryReports reports{clock};
    CSmsMessagesX received{clock, 3600};
    CSmppSession session{log, settings, reports, received, clock};
};

TEST_F(Session, BindResponsesHaveTheirCodes) {
    for (const auto& [status, code] :
         {std::pair{0x0DU, 33202}, {0x0EU, 33204}, {0x0FU, 33203}, {0x99U, 33202}}) {
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        other.OnBytes(Pdu(0x80000009, status, 1));
        EXPECT_EQ(other.GetState(), CSmppSession::State::kClosed);
        EXPECT_EQ(other.BindResult(), code);
    }
    for (const std::string& refusal : {Pdu(0x80000000, 3, 1), Pdu(0x80000000, 0, 0), Pdu(6, 0, 9)}) {
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        other.OnBytes(refusal);  // generic_nack, unbind
        EXPECT_EQ(other.GetState(), CSmppSession::State::kClosed);
        EXPECT_EQ(other.BindResult(), 33202);
    }
    for (const auto& [mode, command] : {std::pair{1, '\x02'}, {2, '\x01'}, {0, '\x09'}, {7, '\x09'}}) {
        settings.systemMode = mode;
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        EXPECT_EQ(other.Output()[7], command);
    }
}

TEST_F(Session, AnswersTheServerAlsoBeforeTheBindAndOctetByOctet) {
    session.StartBind();
    TakeOutput();
    const std::string all = Pdu(0x15, 0, 77) + Pdu(0x80000009, 0, 1, std::string("x\0", 2)) +
                            Deliver(5, "Hello") + Pdu(0x12345, 0, 6) +
                            Pdu(0x103, 0, 8, std::string(10, '\0'));
    for (const char octet : all) session.OnBytes({&octet, 1});
    EXPECT_EQ(
        TakeOutput(),
        (std::vector<Sent>{{0x80000015, 0, 77}, {0x80000005, 0, 5}, {0x80000000, 0, 0}, {0x80000103, 0, 8}}));
    CSmsMessageX message;
    ASSERT_EQ(received.First(message), 0);
    EXPECT_EQ(message.Data, u"Hello");
    EXPECT_EQ(message.Sender, "+31611111111");
}

TEST_F(Session, LengthsOutOfRangeEndTheSession) {
    for (const char* octets : {"HTTP/1.1", "\x00\x00\x00\x0F", "\x00\x01\x00\x01", "\xFF\xFF\xFF\xFF"}) {
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        other.OnBytes({octets, 4});
        EXPECT_EQ(other.GetState(), CSmppSession::State::kClosed);
        EXPECT_EQ(other.BindResult(), 33202);  // no SMPP server
    }
}

TEST_F(Session, TheWindowBoundsWhatIsUnanswered) {
    settings.windowSize = 3;
    Bind();
    for (int i = 0; i < 5; ++i) Queue(std::to_string(i));
    session.OnTick();
    EXPECT_EQ(TakeOutput(), (std::vector<Sent>{{4, 0, 2}, {4, 0, 3}, {4, 0, 4}}));
    Response(3, "B");
    session.OnTick();
    EXPECT_EQ(TakeOutput(), (std::vector<Sent>{{4, 0, 5}}));
    EXPECT_EQ(Status("0"), 10);
    EXPECT_EQ(Status("1"), 1);
    EXPECT_EQ(reports.Query("1")->providerReference, "B");
    Response(3, "B");  // a second answer is nobody's
    EXPECT_EQ(session.InFlight(), 3U);
}

TEST_F(Session, SubmitStatusesBecomeResults) {
    const TemporaryFolder folder;
    log.SetActivityFile(folder.File("activity"));
    Bind();
    struct Row {
        std::uint32_t answer;
        bool report;
        std::int32_t status, logged;
    };
    std::uint32_t sequence = 2;
    for (const Row& row :
         {Row{0, false, 11, 0}, Row{0, true, 1, 0}, Row{0x58, true, 8, 33217}, Row{0x14, true, 8, 33217},
          Row{0x0B, true, 8, 33216}, Row{0x401, true, 13, 33225}, Row{0x45, true, 8, 33215}}) {
        Queue("r", row.report);
        session.OnTick();
        Response(sequence++, "id", row.answer);
        EXPECT_EQ(Status("r"), row.status) << row.answer;
        EXPECT_EQ(reports.Query("r")->statusCode, row.answer);  // the network's own
        const std::string line =
            row.logged != 0 ? "Sending failed (" + std::string(DescribeError(row.logged)) + ")\n" : "\n";
        EXPECT_TRUE(TemporaryFolder::Read(folder.File("activity")).ends_with(line)) << row.answer;
    }
    for (const auto& [answer, code] : {std::pair{3U, 3}, {0U, 0xFF}}) {
        Queue("n");
        session.OnTick();
        session.OnBytes(Pdu(0x80000000, answer, sequence++));
        EXPECT_EQ(Status("n"), 8);
        EXPECT_EQ(reports.Query("n")->statusCode, code);
    }
}

TEST_F(Session, UnansweredSubmitsExpireAfterTwentySeconds) {
    Bind();
    settings.serverKeepAlive = 0;
    Queue("a");
    session.OnTick();
    clock.Sleep(19'999);
    session.OnTick();
    EXPECT_EQ(Status("a"), 10);
    clock.Sleep(1);
    session.OnTick();
    EXPECT_EQ(Status("a"), 12);
    EXPECT_EQ(reports.Query("a")->statusCode, -1);
    EXPECT_EQ(session.InFlight(), 0U);
}

TEST_F(Session, TenUnansweredKeepAlivesEndTheSession) {
    Bind();
    Queue("waiting");
    settings.windowSize = 1;
    for (int i = 0; i < 10; ++i) {
        clock.Sleep(30'000);
        session.OnTick();
        EXPECT_EQ(session.GetState(), CSmppSession::State::kBound) << i;
    }
    clock.Sleep(30'000);
    session.OnTick();
    EXPECT_EQ(session.GetState(), CSmppSession::State::kClosed);
    EXPECT_EQ(session.CloseCode(), 33206);
}

TEST_F(Session, AnAnsweredKeepAliveCountsAnew) {
    Bind();
    for (int i = 0; i < 30; ++i) {
        clock.Sleep(30'000);
        session.OnTick();
        session.OnBytes(Pdu(0x80000015, 0, TakeOutput().back().sequence));
    }
    EXPECT_EQ(session.GetState(), CSmppSession::State::kBound);
}

TEST_F(Session, ALateResponseCountsAsIfInTime) {
    settings.serverKeepAlive = 0;
    Bind();
    for (const char* reference : {"a", "b", "c", "d"}) Queue(reference);
    session.OnTick();
    Response(5, "D");
    clock.Sleep(20'000);
    session.OnTick();
    EXPECT_EQ(Status("a"), 12);
    EXPECT_EQ(reports.Query("a")->providerReference, "N/A");
    session.OnBytes(Deliver(50, "id:N/A stat:DELIVRD", 4));  // which names no message
    EXPECT_EQ(Status("a"), 12);
    clock.Sleep(60'000);
    Response(2, "A");
    EXPECT_EQ(Status("a"), 1);
    EXPECT_EQ(reports.Query("a")->statusCode, 0);
    EXPECT_EQ(reports.Query("a")->providerReference, "A");
    Response(3, "", 8);
    EXPECT_EQ(Status("b"), 8);
    session.OnBytes(Pdu(0x80000000, 3, 4));
    EXPECT_EQ(Status("c"), 8);
    session.OnBytes(Deliver(51, "id:A stat:DELIVRD", 4));
    EXPECT_EQ(Status("a"), 2);
    Response(2, "X");  // a second answer is nobody's
    EXPECT_EQ(reports.Query("a")->providerReference, "A");
    EXPECT_EQ(Status("d"), 1);
}

TEST_F(Session, ReceiptsFindTheirMessageAlsoWhenTheyOvertakeTheResponse) {
    Bind();
    Queue("a");
    Queue("b");
    session.OnTick();
    session.OnBytes(Deliver(50, "id:00B sub:001 done date:2311150001 stat:ACCEPTD err:000", 4));
    session.OnBytes(Deliver(51, "id:00B sub:001 done date:2311150001 stat:DELIVRD err:000", 4));
    session.OnBytes(Deliver(52, "id:unknown stat:DELIVRD", 4));
    EXPECT_EQ(Status("b"), 10);
    Response(3, "00b");
    EXPECT_EQ(Status("b"), 2);  // in the order of their arrival
    EXPECT_EQ(received.Count(), 0U);
    Response(2, "A");
    session.OnBytes(Deliver(53, "id:A stat:UNDELIV err:5", 4));
    EXPECT_EQ(Status("a"), 5);
    EXPECT_EQ(reports.Query("a")->statusCode, 5);
    CSmsMessageX message;
    ASSERT_EQ(received.First(message), 0);  // nobody's receipt is given as a message, not lost
    EXPECT_EQ(message.Format, 30);
    EXPECT_EQ(received.Count(), 1U);
}

// A message counts as a receipt when the server marks it, or when it is one in every respect.
TEST_F(Session, NoIncomingTextVanishes) {
    struct Row {
        const char* text;
        char esm;
        std::int32_t status;
        std::int32_t format;  // of the message given; -1 = none
    };
    for (const Row& row : {
             Row{"Order id:16 please call back", 0, 1, 0}, Row{"id:16 stat:DELIVRD", 0, 2, -1},
             Row{"id:16 stat:DELIVRD", 4, 2, -1}, Row{"id:16", 4, 0, -1},  // as documented
             Row{"id:016 stat:DELIVRD", 0, 1, 0},                          // not exact
             Row{"id:016 stat:DELIVRD", 4, 2, -1},                         //
             Row{"id:99 stat:DELIVRD", 0, 1, 0},                           //
             Row{"id:99 stat:DELIVRD", 4, 1, 30},                          //
             Row{"no receipt at all", 4, 1, 30},                           //
             Row{"Ticket id:16 stat:open please call", 0, 1, 0},           //
             Row{"Your id:16 has the stat:us", 0x40, 1, 0},  // broken header, and no word "stat"
         }) {
        reports.Clear();
        received.Clear();
        reports.RecordSent("a", ReportWanted::kYes);
        reports.RecordProviderReference("a", "16");
        CSmppSession other(log, settings, reports, received, clock);
        other.OnBytes(Deliver(5, row.text, row.esm));
        EXPECT_EQ(Status("a"), row.status) << row.text;
        CSmsMessageX message;
        message.Format = -1;
        (void)received.First(message);
        EXPECT_EQ(message.Format, row.format) << row.text;
    }
}

TEST_F(Session, AnUnmarkedReceiptIsHeldTooAndElseItIsAMessage) {
    Bind();
    Queue("a");
    session.OnTick();
    session.OnBytes(Deliver(50, "id:A1 stat:DELIVRD") + Deliver(51, "id:B1 stat:DELIVRD") +
                    Deliver(52, "id:C1 please call back"));
    EXPECT_EQ(received.Count(), 1U);
    Response(2, "A1");
    EXPECT_EQ(Status("a"), 2);
    ASSERT_EQ(received.Count(), 2U);
    CSmsMessageX message;
    ASSERT_EQ(received.ByIndex(1, message), 0);
    EXPECT_EQ(message.Data, u"id:B1 stat:DELIVRD");
    EXPECT_EQ(message.Format, 0);
}

TEST_F(Session, ReceiptsByTextAndByParameter) {
    struct Row {
        const char* text;
        std::string tlvs;
        std::int32_t status, completed, code;
    };
    const std::int32_t now = 1'700'000'000, done = 1700006460;
    for (const bool isEarly : {false, true}) {
        for (const Row& row : {
                 Row{"", ReceiptedId("M1") + State(5), 5, now, 0},
                 Row{"", ReceiptedId("M1") + State(1), 1, 0, 0},
                 Row{"", ReceiptedId("M1"), 1, 0, 0},  // no state: dropped
                 Row{"id:M1", ReceiptedId("M1") + State(2), 2, now, 0},
                 Row{"id:M1", State(2), 2, now, 0},
                 Row{"id:M1 stat:DELIVRD err:7 done date:2311150001", ReceiptedId("M1") + State(5), 5, done,
                     7},
                 Row{"id:M1 stat:DELIVRD err:7 done date:2311150001", ReceiptedId("M1"), 2, done, 7},
                 Row{"id:7 stat:DELIVRD err:7 done date:2311150001", ReceiptedId("M1"), 2, done, 7},
                 Row{"id:M1 stat:DELIVRD err:7 done date:2311150001", ReceiptedId("7"), 2, done, 7},
             }) {
            reports.Clear();
            CSmppSession other(log, settings, reports, received, clock);
            other.StartBind();
            other.OnBytes(Pdu(0x80000009, 0, 1));
            reports.RecordSent("a", ReportWanted::kYes);
            other.Queue({Pdu(4, 0, 0), "a", true});
            other.OnTick();
            const std::string receipt = WithTlvs(Deliver(60, row.text, 4), row.tlvs);
            const std::string response = Pdu(0x80000004, 0, 2, std::string("M1\0", 3));
            for (const std::string& pdu :
                 isEarly ? std::vector{receipt, response} : std::vector{response, receipt})
                other.OnBytes(pdu);
            const CSmsDeliveryReport report = *reports.Query("a");
            EXPECT_EQ(report.status, row.status) << row.text << isEarly;
            EXPECT_EQ(report.completedTime, row.completed) << row.text << isEarly;
            EXPECT_EQ(report.statusCode, row.code) << row.text << isEarly;
            EXPECT_EQ(received.Count(), 0U);
        }
    }
}

TEST_F(Session, AForeignParameterIsKeptUnderItsId) {
    session.OnBytes(WithTlvs(Deliver(5, ""), ReceiptedId("F1") + State(2)));
    EXPECT_EQ(Status("F1"), 2);
    EXPECT_EQ(received.Count(), 0U);
    reports.RecordSent("F2", ReportWanted::kYes);
    session.OnBytes(WithTlvs(Deliver(6, ""), ReceiptedId("F2") + State(2)));  // not the id of ours
    EXPECT_EQ(Status("F2"), 1);
    EXPECT_EQ(received.Count(), 1U);
}

// Whatever the form, and however many overtake their responses at once.
TEST_F(Session, AllReceiptsOfALargeWindowFindTheirMessages) {
    settings.windowSize = 500;
    Bind();
    for (int i = 0; i < 5000; ++i) Queue(std::to_string(i));
    std::uint32_t answered = 2;
    for (int round = 0; round < 10; ++round) {
        session.OnTick();
        const std::size_t sent = TakeOutput().size();
        std::string receipts, responses;
        for (std::size_t i = 0; i < sent; ++i, ++answered) {
            const std::string id = "M" + std::to_string(answered);
            receipts += answered % 3 == 0   ? WithTlvs(Deliver(9, "", 4), ReceiptedId(id) + State(2))
                        : answered % 3 == 1 ? Deliver(9, "id:" + id + " stat:DELIVRD", 4)
                                            : Deliver(9, "id:" + id + " stat:DELIVRD");
            responses += Pdu(0x80000004, 0, answered, id + std::string(1, '\0'));
        }
        session.OnBytes(receipts);
        session.OnBytes(responses);
        TakeOutput();
    }
    int delivered = 0;
    for (int i = 0; i < 5000; ++i) delivered += Status(std::to_string(i)) == 2 ? 1 : 0;
    EXPECT_EQ(delivered, 5000);
    EXPECT_EQ(received.Count(), 0U);
}

TEST_F(Session, AReceiptWaitsForWhatWasInFlightBeforeItAndNothingElse) {
    settings.serverKeepAlive = 0;
    Bind();
    for (int i = 0; i < 300; ++i)
        session.OnBytes(Deliver(9, "id:F" + std::to_string(i) + " stat:DELIVRD", 4));
    EXPECT_EQ(received.Count(), 300U);  // nothing is in flight
    received.Clear();
    Queue("a");
    session.OnTick();
    clock.Sleep(1);
    session.OnBytes(Deliver(9, "id:F stat:DELIVRD", 4));
    clock.Sleep(1);
    Queue("b");
    session.OnTick();
    EXPECT_EQ(received.Count(), 0U);
    Response(2, "A");
    EXPECT_EQ(received.Count(), 1U);
    session.OnBytes(Deliver(9, "id:G stat:DELIVRD", 4));
    EXPECT_EQ(received.Count(), 1U);
    clock.Sleep(19'999);
    session.OnTick();
    EXPECT_EQ(received.Count(), 1U);
    clock.Sleep(1);
    session.OnTick();  // which is as long as a response may take
    EXPECT_EQ(received.Count(), 2U);
}

TEST_F(Session, WhatIsHeldIsBoundedAndNothingOfItIsLost) {
    Bind();
    Queue("a");
    session.OnTick();
    constexpr std::size_t kMost = 16'384 + 4;
    for (std::size_t i = 0; i < kMost; ++i) session.OnBytes(Deliver(9, "id:F" + std::to_string(i), 4));
    EXPECT_EQ(received.Count(), 0U);
    session.OnBytes(Deliver(9, "id:A stat:DELIVRD", 4));
    EXPECT_EQ(received.Count(), 1U);
    Response(2, "A");
    EXPECT_EQ(Status("a"), 2);
    EXPECT_EQ(received.Count(), kMost);
}

TEST_F(Session, TheBaseIsGuessedOnlyWhileNothingTellsAgainstIt) {
    reports.LoadText("old;;12D687;;1||other;;12D688;;1||third;;12D689;;1");
    const auto receipt = [&](const char* id) {
        session.OnBytes(Deliver(9, std::string("id:") + id + " stat:DELIVRD", 4));
    };
    Bind();
    Queue("a");
    session.OnTick();
    receipt("1234567");
    EXPECT_EQ(Status("old"), 1);  // a submission is unanswered
    Response(2, "12D700");
    EXPECT_EQ(Status("old"), 2);
    session.OnBytes(Deliver(9, "id:1234568 stat:DELIVRD"));  // not marked
    EXPECT_EQ(Status("other"), 1);
    receipt("1234568");
    EXPECT_EQ(Status("other"), 2);
    receipt("12d700");
    EXPECT_EQ(Status("a"), 2);
    receipt("1234569");  // the server does not write its ids in another base
    EXPECT_EQ(Status("third"), 1);
}

TEST_F(Session, NothingVanishesWhenTheSessionDies) {
    settings.windowSize = 1;
    Bind();
    Queue("sent");
    Queue("queued");
    session.OnTick();
    session.OnClosed();
    EXPECT_EQ(Status("sent"), 12);
    EXPECT_EQ(Status("queued"), 12);
}

// A worker that finds the connection at its end hands on what it has read, and nothing more.
TEST_F(Session, AnswersReadBeforeTheEndCountBeforeTheRestFails) {
    Bind();
    for (const char* reference : {"answered", "unanswered"}) Queue(reference, false);
    session.OnTick();
    session.Take(Pdu(0x80000004, 0, 2, std::string("A\0", 2)));
    session.OnClosed();
    EXPECT_EQ(Status("answered"), sms::asDELIVERYSTATUS_SUBMITTED);
    EXPECT_EQ(reports.Query("answered")->providerReference, "A");
    EXPECT_EQ(Status("unanswered"), sms::asDELIVERYSTATUS_FAILED);
}

TEST_F(Session, WhatComesBehindAnUnbindInOneReadCounts) {
    for (const bool byServer : {true, false}) {
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        other.OnBytes(Pdu(0x80000009, 0, 1, std::string("lab\0", 4)));
        reports.RecordSent("a", ReportWanted::kSubmitRequested);
        other.Queue({Pdu(4, 0, 0, "body"), "a", false});
        other.OnTick();
        if (!byServer) other.StartUnbind();
        other.OnBytes(Pdu(byServer ? 6 : 0x80000006, 0, 3) + Pdu(0x80000004, 0, 2, std::string("A\0", 2)) +
                      Deliver(4, "text"));
        EXPECT_EQ(other.GetState(), CSmppSession::State::kClosed);
        other.OnClosed();
        EXPECT_EQ(Status("a"), 11);
    }
    EXPECT_EQ(received.Count(), 2U);
}

TEST_F(Session, APduWhoseHandlingThrowsIsLeftUnansweredAndNothingElse) {
    class ThrowingClock : public VirtualClock {
      public:
        std::int64_t Now() override {
            if (throws) throw std::runtime_error("broken");
            return VirtualClock::Now();
        }
        bool throws = false;
    } throwing;
    CSmppSession other(log, settings, reports, received, throwing);
    other.StartBind();
    other.OnBytes(Pdu(0x80000009, 0, 1, std::string("lab\0", 4)));
    other.Output().clear();
    reports.RecordSent("a", ReportWanted::kSubmitRequested);
    other.Queue({Pdu(4, 0, 0, "body"), "a", false});
    other.OnTick();
    other.Output().clear();
    throwing.throws = true;
    other.OnBytes(Deliver(5, "Hello") + Pdu(0x80000004, 0, 2, std::string("A\0", 2)) + Pdu(0x15, 0, 6));
    EXPECT_EQ(other.GetState(), CSmppSession::State::kBound);
    EXPECT_EQ(other.Output(), Pdu(0x80000015, 0, 6));
    EXPECT_EQ(Status("a"), 11);
    throwing.throws = false;
    other.OnBytes(Deliver(7, "Hello"));  // the server sends it again
    EXPECT_EQ(received.Count(), 1U);
}

TEST_F(Session, AServerThatOnlyAsksIsNotListenedToWithoutEnd) {
    settings.windowSize = 1'000'000;
    Bind();
    const std::string submit = Pdu(4, 0, 0, std::string(1024 - 16, 'x'));
    reports.RecordSent("r", ReportWanted::kSubmitRequested);
    for (int i = 0; i < 2000; ++i) session.Queue({submit, "r", false});
    session.OnTick();
    EXPECT_EQ(session.InFlight(), 1024U);  // a mebibyte, at which submitting ends and reading does not
    std::size_t links = 0;
    for (; session.WantsBytes(); ++links) session.OnBytes(Pdu(0x15, 0, 7));
    EXPECT_EQ(links, 65'536U);  // another one of answers
    session.Output().erase(0, 16);
    EXPECT_TRUE(session.WantsBytes());
}

TEST_F(Session, ABindThatOptionalParametersBurstIsNotSent) {
    settings.transmitTlvs.AddOrReplace(
        {.tag = 0x1400, .type = TLVType::kOctet, .text = std::u16string(65'536, u'x')});
    session.StartBind();
    EXPECT_EQ(session.GetState(), CSmppSession::State::kClosed);
    EXPECT_EQ(session.BindResult(), 34033);
    EXPECT_TRUE(session.Output().empty());
}

TEST_F(Session, AHiddenPasswordStandsNowhereInTheLog) {
    const TemporaryFolder folder;
    log.SetLogFile(folder.File("log"));
    settings.systemId = "me";
    settings.systemPassword = "pw";
    const auto bind = [&] {
        TemporaryFolder::Write(folder.File("log"), {});
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        EXPECT_EQ(other.Output(), Pdu(9, 0, 1, std::string("me\0pw\0\0\x34\0\0\0", 11)));
        return TemporaryFolder::Read(folder.File("log"));
    };
    const std::string clear = bind();
    EXPECT_NE(clear.find("Password               : pw\n"), std::string::npos);
    EXPECT_NE(clear.find("6D 65 00 70 77 00 00 34 00 00 00"), std::string::npos);
    log.HidePasswords({"pw"});
    const std::string masked = bind();
    EXPECT_NE(masked.find("Password               : ****\n"), std::string::npos);
    EXPECT_NE(masked.find("6D 65 00 2A 2A 2A 2A 00 00 34 00 00 00"), std::string::npos);
    EXPECT_EQ(masked.find("pw"), std::string::npos);
}

TEST_F(Session, AFieldThatEqualsAHiddenPasswordIsHiddenWithIt) {
    using namespace std::string_literals;
    struct Row {
        const char* systemId;
        const char* systemType;
        const char* addressRange;
        const char* octets;  // of the dumped bind, from the system id on
    };
    log.HidePasswords({"pw"});
    settings.systemPassword = "pw";
    for (const Row& row : {
             Row{"pw", "", "", "2A 2A 2A 2A 00 2A 2A 2A 2A 00 00 34 00 00 00 "},
             Row{"", "pw", "", "00 2A 2A 2A 2A 00 2A 2A 2A 2A 00 34 00 00 00 "},
             Row{"", "", "pw", "00 2A 2A 2A 2A 00 00 34 00 00 2A 2A 2A 2A 00 "},
             Row{"pwd", "", "", "70 77 64 00 2A 2A 2A 2A 00 00 34 00 00 00 "},
         }) {
        const TemporaryFolder folder;
        log.SetLogFile(folder.File("log"));
        settings.systemId = row.systemId;
        settings.systemType = row.systemType;
        settings.addressRange = row.addressRange;
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        EXPECT_EQ(other.Output().substr(16),
                  row.systemId + "\0pw\0"s + row.systemType + "\0\x34\0\0"s + row.addressRange + '\0');
        const std::string text = TemporaryFolder::Read(folder.File("log"));
        EXPECT_NE(text.find(row.octets), std::string::npos) << text;
    }
}

TEST_F(Session, ThroughputSpacesTheMessages) {
    settings.throughput = 10;
    settings.windowSize = 1000;
    settings.serverKeepAlive = 0;
    Bind();
    for (int i = 0; i < 100; ++i) Queue(std::to_string(i));
    std::vector<std::uint32_t> times;
    const auto run = [&](std::uint32_t until) {
        for (; clock.Ticks() < until; clock.Sleep(1)) {
            session.OnTick();
            if (!TakeOutput().empty()) times.push_back(clock.Ticks());
        }
    };
    run(301);
    EXPECT_EQ(times, (std::vector<std::uint32_t>{0, 100, 200, 300}));
    times.clear();
    clock.Sleep(10'000 - clock.Ticks());  // a pause does not save up more than 10 ms
    run(10'300);
    EXPECT_EQ(times, (std::vector<std::uint32_t>{10'000, 10'090, 10'190, 10'290}));
}

TEST_F(Session, SleepsUntilTheNextMessageMayGo) {
    settings.windowSize = 3;
    Bind();
    EXPECT_EQ(session.NextTick(), 1000U);  // nothing to do
    settings.throughput = 10;
    for (int i = 0; i < 4; ++i) Queue(std::to_string(i));
    EXPECT_EQ(session.NextTick(), 1U);
    struct Row {
        std::uint32_t sleep;
        std::size_t sent;
        std::uint32_t next;
    };
    for (const Row& row : {Row{0, 1, 101}, {40, 0, 61}, {60, 1, 101}, {99, 0, 2}, {1, 1, 1000}}) {
        clock.Sleep(row.sleep);
        session.OnTick();
        EXPECT_EQ(TakeOutput().size(), row.sent);
        EXPECT_EQ(session.NextTick(), row.next);  // in the end the window is full
    }
    settings.throughput = 0;
    Response(2, "A");
    EXPECT_EQ(session.NextTick(), 1000U);
}

TEST_F(Session, EachKeepAliveIsDueAnIntervalAfterTheLast) {
    session.StartBind();
    TakeOutput();
    clock.Sleep(5000);  // the bind counts as the first
    session.OnBytes(Pdu(0x80000009, 0, 1, std::string("lab\0", 4)));
    std::vector<std::uint32_t> times;
    for (; clock.Ticks() <= 95'000; clock.Sleep(1000)) {
        session.OnTick();
        if (!TakeOutput().empty()) times.push_back(clock.Ticks());
    }
    EXPECT_EQ(times, (std::vector<std::uint32_t>{35'000, 65'000, 95'000}));
}

TEST_F(Session, ForgetsReportsAfterADay) {
    settings.serverKeepAlive = 0;
    Bind();
    reports.RecordSent("old", ReportWanted::kNo);
    clock.Sleep(86'400'000);
    session.OnTick();
    EXPECT_TRUE(reports.Query("old").has_value());
    clock.Sleep(9'999);
    session.OnTick();  // every ten seconds only
    EXPECT_TRUE(reports.Query("old").has_value());
    clock.Sleep(1);
    session.OnTick();
    EXPECT_FALSE(reports.Query("old").has_value());
}

TEST_F(Session, LogsEachCommandByItsName) {
    const TemporaryFolder folder;
    settings.dumpFlags = 0;
    struct Row {
        std::uint32_t command;
        std::string lines;
    };
    for (const Row& row : {
             Row{0x80000001, "Receiving [bind_receiver_resp]...\n"},
             Row{0x80000002, "Receiving [bind_transmitter_resp]...\n"},
             Row{0x80000009, "Receiving [bind_transceiver_resp]...\n"},
             Row{0x80000004, "Receiving [submit_sm_resp]...\n|Message Reference []\n"},
             Row{0x80000015, "Receiving [enquire_link_resp]...\n"},
             Row{0x80000006, "Receiving [unbind_resp]...\n"},
             Row{0x80000000, "Receiving [generic_nack]...\n"},
             Row{0x15, "Receiving [enquire_link]...\n|Sending [enquire_link_resp]...\n"},
             Row{0x05, "Receiving [deliver_sm]...\n|Sending [deliver_sm_resp]...\n"},
             Row{0x103, "Receiving [data_sm]...\n|Sending [data_sm_resp]...\n"},
             Row{0x06, "Receiving [unbind]...\n|Sending [unbind_resp]...\n|Server has unbound the session\n"},
             Row{0x99, "Receiving [unknown pdu]...\n|Sending [generic_nack]...\n"},
         }) {
        CSmppSession other(log, settings, reports, received, clock);
        other.StartBind();
        const std::string file = folder.File(std::to_string(row.command));
        log.SetLogFile(file);
        other.OnBytes(Pdu(row.command, 0, 1));
        log.SetLogFile({});
        std::string expected;
        for (const std::string_view line : Split(row.lines, "|"))
            expected += "[22:13:20]  " + std::string(line) + "\n";
        EXPECT_EQ(TemporaryFolder::Read(file), expected);
    }
}

}  // namespace
