// The channel with its worker over a real connection whose other end the test plays. For ThreadSanitizer too.
#include "smpp/SmppProtocol.h"
#include "support/TcpPeer.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace {

using namespace std::string_literals;

// The machine's clock, at which a test can hold up the worker.
class GateClock : public Clock {
  public:
    std::uint32_t Ticks() override {
        if (std::this_thread::get_id() != caller_) Pass();
        return SystemClock().Ticks();
    }
    void Sleep(std::uint32_t milliseconds) override { SystemClock().Sleep(milliseconds); }
    std::int64_t Now() override { return SystemClock().Now(); }
    CalendarTime ToLocal(std::int64_t seconds) override { return SystemClock().ToLocal(seconds); }
    std::int64_t FromLocal(const CalendarTime& local) override { return SystemClock().FromLocal(local); }

    // Holds the worker at its next look at the clock when the condition is true.
    void HoldWhen(std::function<bool()> condition) {
        const std::scoped_lock guard(lock_);
        holdsWhen_ = std::move(condition);
    }
    void AwaitHeld() {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return isHeld_; });
    }
    void Open() {
        const std::scoped_lock guard(lock_);
        isHeld_ = false;
        holdsWhen_ = nullptr;
        changed_.notify_all();
    }

  private:
    void Pass() {
        std::unique_lock guard(lock_);
        if (!holdsWhen_ || !holdsWhen_()) return;
        isHeld_ = true;
        changed_.notify_all();
        changed_.wait(guard, [this] { return !isHeld_; });
    }

    std::thread::id caller_ = std::this_thread::get_id();
    std::mutex lock_;
    std::condition_variable changed_;
    std::function<bool()> holdsWhen_;
    bool isHeld_ = false;
};

std::string Word(std::uint32_t value) {
    std::string octets;
    for (int shift = 24; shift >= 0; shift -= 8) octets.push_back(static_cast<char>(value >> shift));
    return octets;
}

std::string Pdu(std::uint32_t command, std::uint32_t sequence, const std::string& body = {}) {
    return Word(static_cast<std::uint32_t>(16 + body.size())) + Word(command) + Word(0) + Word(sequence) +
           body;
}

class Connection : public testing::Test {
  protected:
    void SetUp() override {
        smpp.settings.server = "127.0.0.1";
        smpp.settings.serverPort = peer.Port();
        smpp.settings.systemPassword = "secret pass";
        message.Recipient = "+31612345678";
        message.Data = u"text";
    }
    void TearDown() override { peer.Close(); }  // so that the channel has nothing to wait for
    // Connects to a peer that answers the bind with these octets.
    ResultCode Connect(const std::string& answer = Pdu(0x80000009, 1, "lab\0"s)) {
        std::thread server([&] {
            peer.Accept();
            bind = peer.ReadPdu();
            peer.Write(answer);
        });
        const ResultCode code = smpp.Connect();
        server.join();
        return code;
    }
    std::string Send() {
        std::string reference;
        EXPECT_EQ(smpp.Send(message, reference), 0);
        return reference;
    }
    bool IsAnswered(const std::string& reference) {
        return smpp.Reports().Query(reference)->status == sms::asDELIVERYSTATUS_SUBMITTED;
    }
    CSmppSubmitSm& Submitted() {
        const std::string octets = peer.ReadPdu();
        submit.SetData({reinterpret_cast<const std::uint8_t*>(octets.data()), octets.size()});
        submit.Decode();
        return submit;
    }

    GateClock clock;
    TcpPeer peer;
    CSmppProtocol smpp{clock};
    CSmsMessageX message;
    CSmppSubmitSm submit;
    std::string bind;
};

TEST_F(Connection, SendUsesTheAddressesAndTheSetThatAreSetNow) {
    ASSERT_EQ(Connect(), 0);
    SmppSettings& s = smpp.settings;
    s.sourceAddress = "1234";
    s.sourceTon = 3;
    s.sourceNpi = 4;
    s.destinationTon = 5;
    s.destinationNpi = 6;
    s.charSet = sms::asSMPPCHARSET_GSM;
    s.systemMode = 2;  // of the next bind
    smpp.SetAdvancedSettings("ValidityPeriodRelative=1");
    message.Recipient = "0612345678";
    message.Data = u"@";
    message.ValidityPeriod = 60;
    Send();
    const CSmppSubmitSm& sent = Submitted();
    EXPECT_EQ(sent.source_addr, "1234");
    EXPECT_EQ(sent.source_addr_ton, 3);
    EXPECT_EQ(sent.source_addr_npi, 4);
    EXPECT_EQ(sent.dest_addr_ton, 5);
    EXPECT_EQ(sent.dest_addr_npi, 6);
    EXPECT_EQ(sent.short_message, "\0"s);
    EXPECT_TRUE(sent.validity_period.ends_with('+'));
}

TEST_F(Connection, ASessionThatEndsByItselfClosesItsConnection) {
    for (const std::string& end : {Pdu(6, 9), "\0\0\0\0"s}) {
        ASSERT_EQ(Connect(), 0);
        peer.Write(end);
        if (end.size() == 16) EXPECT_EQ(peer.ReadPdu(), Pdu(0x80000006, 9));
        EXPECT_TRUE(peer.HasEnded());  // without any call of the caller
        peer.Close();
    }
    std::string reference;
    EXPECT_EQ(smpp.Send(message, reference), 33205);
}

TEST_F(Connection, AnswersThatCameBeforeTheConnectionBrokeCount) {
    constexpr std::uint32_t kWindow = 1000;
    smpp.SetAdvancedSettings("SmppWindowSize=1000");
    smpp.settings.serverKeepAlive = 0;
    ASSERT_EQ(Connect(), 0);
    std::vector<std::string> references;
    while (references.size() < 2 * kWindow) references.push_back(Send());
    std::vector<std::string> answers(2);
    for (std::uint32_t i = 0; i < kWindow; ++i) {
        const std::uint32_t sequence = Submitted().sequence_number;
        answers[i < kWindow / 2 ? 0 : 1] += Pdu(0x80000004, sequence, "id" + std::to_string(i) + "\0"s);
    }
    // A message that is received has the answers before it recorded at once, not when more has been sent: so
    // the worker is held between reading and sending, while the rest comes and the peer goes.
    const std::string& last = references[kWindow / 2 - 1];
    clock.HoldWhen([&] { return IsAnswered(last); });
    answers[0] += Pdu(5, 1, std::string(17, '\0'));
    peer.Write(answers[0]);
    clock.AwaitHeld();
    peer.Write(answers[1]);
    peer.AwaitTaken();
    peer.Reset();
    clock.Open();
    CSmsDeliveryReport report;
    EXPECT_EQ(smpp.QueryStatus(references.back(), true, report), 0);
    EXPECT_EQ(
        std::ranges::count_if(references, [this](const auto& reference) { return IsAnswered(reference); }),
        kWindow);
}

TEST_F(Connection, AServerThatNeverReadsDoesNotFillTheMemory) {
    ASSERT_EQ(Connect(), 0);
    std::string links;
    while (links.size() < 65'536) links += Pdu(0x15, 7);
    constexpr std::size_t kLimit = std::size_t{64} << 20;  // more than all buffers between
    const std::size_t written = peer.Flood(links, kLimit);
    EXPECT_LT(written, kLimit);
    const std::string answers = peer.Read(written / 16 * 16);
    EXPECT_EQ(answers.size(), written / 16 * 16);
    EXPECT_TRUE(answers.ends_with(Pdu(0x80000015, 7)));
    EXPECT_TRUE(smpp.IsConnected());
}

TEST_F(Connection, PasswordsStayOutOfTheLogWhenTheSettingSaysSo) {
    const TemporaryFolder folder;
    for (const bool masks : {false, true}) {
        const std::string log = folder.File(masks ? "masked" : "clear");
        smpp.SetLogFile(log);
        smpp.SetAdvancedSettings(masks ? "SmppWindowSize=5;MaskPasswords=1" : "");
        ASSERT_EQ(Connect(), 0);
        EXPECT_NE(bind.find("secret pass"), std::string::npos);
        peer.Close();
        smpp.Disconnect();
        const std::string text = TemporaryFolder::Read(log);
        EXPECT_EQ(text.find("Password               : secret pass") == std::string::npos, masks);
        EXPECT_EQ(text.find("73 65 63 72 65 74") == std::string::npos, masks);
        EXPECT_EQ(text.find("secret") == std::string::npos, masks);
    }
}

}  // namespace
