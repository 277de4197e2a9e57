// The received-message store: reassembly, time-outs, MMS notifications.
#include "sms/SmsMessagesX.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

class Store : public testing::Test {
  protected:
    static constexpr std::int32_t kTimeout = 3600;
    VirtualClock clock;
    CSmsMessagesX store{clock, kTimeout};

    CSmsMessageX Part(std::uint32_t number, std::uint32_t count, const std::u16string& text,
                      const std::string& sender = "+31611111111", std::uint32_t reference = 7) {
        CSmsMessageX record;
        record.Sender = sender;
        record.Data = text;
        record.PartCount = count;
        record.PartNumber = number;
        record.PartReference = reference;
        record.TimeSecs = static_cast<std::int32_t>(clock.Now());
        record.Time = "then";
        record.SourcePort = 1;
        record.DestinationPort = 2;
        record.StorageLocation = "SM000" + std::to_string(number) + ";";
        return record;
    }
    CSmsMessageX Single(const std::u16string& text) { return Part(1, 1, text); }

    std::vector<std::u16string> Texts() {
        std::vector<std::u16string> texts;
        CSmsMessageX message;
        for (ResultCode code = store.First(message); code == 0; code = store.Next(message)) {
            texts.push_back(message.Data);
        }
        return texts;
    }
};

using Lines = std::vector<std::u16string>;

TEST_F(Store, GivesSinglesInArrivalOrderAndEndsWith33060) {
    CSmsMessageX message;
    EXPECT_EQ(store.First(message), 33060);
    EXPECT_EQ(store.Next(message), 33060);
    store.Add(Single(u"a"));
    store.Add(Single(u"b"));
    EXPECT_EQ(store.Count(), 2U);
    EXPECT_EQ(Texts(), (Lines{u"a", u"b"}));
    EXPECT_EQ(store.Next(message), 33060);
    EXPECT_EQ(store.ByIndex(1, message), 0);
    EXPECT_EQ(message.Id, 2U);
    EXPECT_EQ(store.ByIndex(2, message), 33060);
}

TEST_F(Store, ReadingGoesOnWhileMessagesArrive) {
    CSmsMessageX message;
    store.Add(Single(u"a"));
    ASSERT_EQ(store.First(message), 0);
    store.Add(Single(u"b"));
    ASSERT_EQ(store.Next(message), 0);
    EXPECT_EQ(message.Data, u"b");
    store.Remove(0);
    EXPECT_EQ(store.Next(message), 33060);
    store.Add(Single(u"c"));
    ASSERT_EQ(store.Next(message), 0);
    EXPECT_EQ(message.Data, u"c");
}

TEST_F(Store, CombinesPartsInAnyOrderBehindTheSingles) {
    store.Add(Part(2, 3, u"two"));
    store.Add(Single(u"single"));
    store.Add(Part(3, 3, u"three"));
    EXPECT_EQ(Texts(), Lines{u"single"});
    store.Add(Part(1, 3, u"one"));
    EXPECT_EQ(Texts(), (Lines{u"single", u"onetwothree"}));
    CSmsMessageX whole;
    ASSERT_EQ(store.ByIndex(1, whole), 0);
    EXPECT_EQ(whole.StorageLocation, "SM0001;SM0002;SM0003;");
    EXPECT_EQ(whole.PartCount, 1U);
    EXPECT_EQ(whole.Id, 5U);
    EXPECT_EQ(whole.Time, "then");
    EXPECT_EQ(whole.DestinationPort, 2U);
    EXPECT_EQ(store.Stored(), 2U);
}

TEST_F(Store, NeverMixesSendersOrReferences) {
    store.Add(Part(1, 2, u"a1", "+1"));
    store.Add(Part(2, 2, u"b2", "+2"));
    store.Add(Part(2, 2, u"c2", "+1", 8));
    EXPECT_EQ(store.Count(), 0U);
    store.Add(Part(2, 2, u"a2", "+1"));
    store.Add(Part(1, 2, u"b1", "+2"));
    EXPECT_EQ(Texts(), (Lines{u"a1a2", u"b1b2"}));
}

TEST_F(Store, FillsGapsOnlyAfterTheTimeoutByTheMessagesOwnTime) {
    store.Add(Part(1, 3, u"one"));
    store.Add(Part(3, 3, u"three"));
    clock.Sleep(kTimeout * 1000U);
    EXPECT_EQ(store.Count(), 0U);  // exactly the time-out is not over it
    clock.Sleep(1000);
    EXPECT_EQ(Texts(), Lines{u"one* Missing Part *three"});
    CSmsMessageX whole;
    ASSERT_EQ(store.ByIndex(0, whole), 0);
    EXPECT_EQ(whole.Time, "n/a");
    EXPECT_EQ(whole.SourcePort, 0U);
    EXPECT_EQ(whole.DestinationPort, 0U);
    EXPECT_EQ(store.Stored(), 1U);

    CSmsMessageX old = Part(2, 2, u"late", "+9");
    old.TimeSecs -= kTimeout + 1;
    store.Add(old);
    EXPECT_EQ(Texts().back(), u"* Missing Part *late");
}

TEST_F(Store, KeepsDuplicatePartsApartAndImpossibleNumbersAsSingles) {
    store.Add(Part(1, 2, u"first"));
    store.Add(Part(1, 2, u"again"));
    store.Add(Part(2, 2, u"second"));
    EXPECT_EQ(Texts(), Lines{u"firstsecond"});
    EXPECT_EQ(store.Stored(), 2U);
    store.Add(Part(0, 2, u"zero"));
    store.Add(Part(5, 2, u"five"));
    store.Add(Part(1, 0, u"none"));
    EXPECT_EQ(Texts(), (Lines{u"firstsecond", u"zero", u"five", u"none"}));
    clock.Sleep((kTimeout + 1) * 1000U);
    EXPECT_EQ(Texts().back(), u"again* Missing Part *");
    EXPECT_EQ(store.Stored(), 5U);
}

class FixedDecoder : public MmsNotificationDecoder {
  public:
    std::optional<MmsNotification> Decode(std::string_view pdu, std::int64_t /*time*/) override {
        last = pdu;
        return answer;
    }
    std::optional<MmsNotification> answer;
    std::string last;
};

TEST_F(Store, RecognisesMmsNotifications) {
    FixedDecoder decoder;
    CSmsMessagesX mms(clock, kTimeout, &decoder);
    MmsNotification indication;
    indication.messageType = 130;
    indication.contentLocation = "http://m/1";
    indication.transactionId = "T1";
    indication.from = "+31";
    indication.messageSize = 42;
    indication.expiry = 9;
    MmsNotification report;
    report.messageType = 134;
    report.messageId = "M1";
    report.to = "+32";
    report.date = "d";
    report.status = 0x81;
    struct Row {
        std::optional<MmsNotification> answer;
        std::u16string data;
        std::uint32_t source;
        std::u16string text;
        const char* pdu;
    };
    const std::u16string binary = u"\x01\x06\x01\u00bePDU";
    const std::u16string named =
        u"\x01\x06\x1f"
        u"application/vnd.wap.mms-message"
        u"PDU";
    for (const Row& row : {
             Row{indication, binary, 9200,
                 u"M-NOTIFICATION-IND URL=http://m/1 ID=T1 FROM=+31 SIZE=42 EXPIRATION=9", "PDU"},
             Row{report, binary, 0, u"M-DELIVERY-IND ID=M1 TO=+32 DATE=d STATUS=81", "PDU"},
             Row{std::nullopt, named, 0, u"WAP/WSP message", "PDU"},
             Row{indication, u"\x01\x06\x01\u00aePDU", 0, u"", nullptr},
             Row{indication, binary, 1, u"", nullptr},
             Row{indication, u"\x01\x06", 0, u"", nullptr},
         }) {
        CSmsMessageX push = Single(row.data);
        push.SourcePort = row.source;
        push.DestinationPort = 2948;
        decoder.answer = row.answer;
        mms.Clear();
        mms.Add(push);
        CSmsMessageX message;
        ASSERT_EQ(mms.First(message), 0);
        if (row.pdu == nullptr) {
            EXPECT_EQ(message.Data, row.data);
            EXPECT_EQ(message.DestinationPort, 2948U);
            continue;
        }
        EXPECT_EQ(message.Data, row.text);
        EXPECT_EQ(message.Format, 74);
        EXPECT_EQ(message.DestinationPort, 0U);
        EXPECT_TRUE(decoder.last.ends_with(row.pdu));
    }
}

TEST_F(Store, PartsThatAMessageDoesNotUseGoOnWaiting) {
    store.Add(Part(1, 3, u"A1"));
    store.Add(Part(1, 2, u"B1"));
    store.Add(Part(2, 2, u"B2"));
    EXPECT_EQ(Texts(), Lines{u"A1B2"});
    EXPECT_EQ(store.Stored(), 2U);
    store.Add(Part(2, 2, u"C2"));
    EXPECT_EQ(Texts(), (Lines{u"A1B2", u"B1C2"}));

    // The part whose time has come is not the one that is used first.
    CSmsMessageX late = Part(1, 3, u"late", "+9");
    late.TimeSecs -= kTimeout + 1;
    store.Add(Part(1, 3, u"young", "+9"));
    store.Add(late);
    EXPECT_EQ(Texts(), (Lines{u"A1B2", u"B1C2", u"young* Missing Part ** Missing Part *",
                              u"late* Missing Part ** Missing Part *"}));
    EXPECT_EQ(store.Stored(), 4U);
}

class Thrower : public MmsNotificationDecoder {
  public:
    std::optional<MmsNotification> Decode(std::string_view pdu, std::int64_t /*time*/) override {
        if (throwing && pdu == "BAD") throw std::runtime_error("decoder");
        ++decoded;
        return std::nullopt;
    }
    bool throwing = true;
    int decoded = 0;
};

TEST_F(Store, APassThatFailsLosesNothingAndIsMadeUpFor) {
    Thrower decoder;
    CSmsMessagesX mms(clock, kTimeout, &decoder);
    const auto push = [&](const char16_t* pdu) {
        CSmsMessageX record = Single(u"\x01\x06\x01\u00be" + std::u16string(pdu));
        record.SourcePort = 0;
        record.DestinationPort = 2948;
        mms.Add(record);
    };
    mms.Add(Single(u"first"));
    push(u"GOOD");
    push(u"BAD");
    mms.Add(Part(1, 2, u"one"));
    mms.Add(Part(2, 2, u"two"));
    CSmsMessageX message;
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW((void)mms.First(message), std::runtime_error);
        EXPECT_EQ(mms.Stored(), 4U);
        EXPECT_EQ(mms.ByIndex(0, message), 33060);
    }
    mms.Add(Single(u"last"));
    decoder.throwing = false;
    EXPECT_EQ(mms.Count(), 5U);
    EXPECT_EQ(decoder.decoded, 2);  // each once
    const Lines expected{u"first", u"WAP/WSP message", u"WAP/WSP message", u"onetwo", u"last"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(mms.ByIndex(i, message), 0);
        EXPECT_EQ(message.Data, expected[i]);
    }
}

TEST_F(Store, MessagesArriveWhileTheDecoderWorks) {
    class Adder : public MmsNotificationDecoder {
      public:
        std::optional<MmsNotification> Decode(std::string_view, std::int64_t) override {
            store->Add(record);
            return std::nullopt;
        }
        CSmsMessagesX* store = nullptr;
        CSmsMessageX record;
    };
    Adder decoder;
    CSmsMessagesX mms(clock, kTimeout, &decoder);
    decoder.store = &mms;
    decoder.record = Single(u"meanwhile");
    CSmsMessageX record = Single(u"\x01\x06\x01\u00bePDU");
    record.SourcePort = 0;
    record.DestinationPort = 2948;
    mms.Add(record);
    EXPECT_EQ(mms.Count(), 1U);
    EXPECT_EQ(mms.Count(), 2U);
}

TEST_F(Store, ManyWaitingDuplicatesEndTogether) {
    for (int i = 0; i < 40'000; ++i) store.Add(Part(1, 2, u"again"));
    EXPECT_EQ(store.Count(), 0U);
    clock.Sleep((kTimeout + 1) * 1000U);
    EXPECT_EQ(store.Count(), 40'000U);
    EXPECT_EQ(store.Stored(), 40'000U);
}

TEST_F(Store, WhatWasReadIsForgottenOnDemandAndTheRestStays) {
    for (const char16_t* text : {u"a", u"b", u"c"}) store.Add(Single(text));
    CSmsMessageX message;
    ASSERT_EQ(store.First(message), 0);
    ASSERT_EQ(store.Next(message), 0);
    store.RemoveRead();
    EXPECT_EQ(Texts(), Lines{u"c"});
    ASSERT_EQ(store.Next(message), 33060);
    store.RemoveRead();
    EXPECT_EQ(store.Stored(), 0U);
}

// The age is a signed difference: a part from the future is young, however far the clocks are apart.
TEST_F(Store, APartFromTheFutureWaits) {
    CSmsMessageX part = Part(1, 2, u"early");
    part.TimeSecs = INT32_MAX;
    store.Add(part);
    clock.Sleep((kTimeout + 1) * 1000U);
    EXPECT_EQ(store.Count(), 0U);
}

}  // namespace
