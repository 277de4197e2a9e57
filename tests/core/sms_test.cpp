// The SMS record, the recipient syntax, the received-message store, delivery reports and receipts.
#include "Common/SmppPdu/SmppTime.h"
#include "Common/SmppPdu/TLVRecords.h"
#include "foundation/ErrorTexts.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessageX.h"
#include "sms/SmsMessagesX.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(Recipient, IsSplitAtItsPort) {
    struct Row {
        const char* text;
        const char* address;
        std::uint32_t port;
    };
    for (const Row& row : {Row{"+31612345678:2948", "+31612345678", 2948},
                           Row{"+31612345678", "+31612345678", 0}, Row{"dl:team:7", "dl:team:7", 0},
                           Row{"+31612345678:", "+31612345678", 0}, Row{"+31612345678:x", "+31612345678", 0},
                           Row{"", "", 0}, Row{":5", "", 5}, Row{"ab:1", "ab:1", 0}}) {
        const Recipient recipient = ParseRecipient(row.text);
        EXPECT_EQ(recipient.address, row.address) << row.text;
        EXPECT_EQ(recipient.port, row.port) << row.text;
    }
}

TEST(Recipient, IsCheckedAtTwoLevels) {
    struct Row {
        std::string text;
        std::int32_t noDigit, noOtherLetter;
    };
    for (const Row& row :
         {Row{"123", 34031, 34031}, Row{"", 34031, 34031}, Row{"0612345678", 34032, 0},
          Row{"+31612345678", 0, 0}, Row{"S1234", 0, 0}, Row{"A1234", 0, 0}, Row{"X1234", 0, 34032},
          Row{"x1234", 0, 34032}, Row{"+3161234567a", 34031, 34031}, Row{"dl:x", 0, 0}, Row{"my dl:x", 0, 0},
          Row{"*1234", 0, 0}, Row{"+" + std::string(63, '1'), 0, 0},
          Row{"+" + std::string(64, '1'), 34031, 34031}}) {
        EXPECT_EQ(CheckRecipient(row.text, PrefixRule::kNoDigit), row.noDigit) << row.text;
        EXPECT_EQ(CheckRecipient(row.text, PrefixRule::kNoOtherLetter), row.noOtherLetter) << row.text;
    }
}

TEST(SmsMessageX, FormatsHaveTheirLogNames) {
    for (const auto& [format, name] : {std::pair{0, "TEXT"},
                                       {3, "UNKNOWN"},
                                       {11, "DATA_UDH"},
                                       {23, "UNICODE_MULTIPART_FLASH"},
                                       {30, "UNKNOWN"},
                                       {74, "UNKNOWN"},
                                       {-7, "UNKNOWN"}}) {
        EXPECT_EQ(FormatName(format), name);
    }
}

TEST(SmsMessageX, AssignmentKeepsReferenceStorageAndReceivedTime) {
    CSmsMessageX from;
    from.Reference = "1";
    from.StorageLocation = "SM0001;";
    from.ReceivedTime = 5;
    from.Data = u"text";
    from.TlvRecords.AddOrReplace({.tag = 0x20C, .type = TLVType::kWord});
    CSmsMessageX to;
    to.Reference = "2";
    to.StorageLocation = "ME0002;";
    to.ReceivedTime = 6;
    to = from;
    EXPECT_EQ(to.Reference, "2");
    EXPECT_EQ(to.StorageLocation, "ME0002;");
    EXPECT_EQ(to.ReceivedTime, 6);
    EXPECT_EQ(to.Data, u"text");
    EXPECT_EQ(to.TlvRecords.size(), 1U);
    const CSmsMessageX copy(from);
    EXPECT_EQ(copy.Reference, "1");
    EXPECT_EQ(copy.StorageLocation, "SM0001;");
    to.Clear();
    EXPECT_EQ(to.ReceivedTime, 6);
    EXPECT_EQ(to.Time, "n/a");
    EXPECT_TRUE(to.TlvRecords.empty());
}

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
    std::optional<MmsNotification> Decode(std::string_view pdu) override {
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

// --- receipts and reports

TEST(Receipt, TakesItsFieldsWhereverTheyStand) {
    VirtualClock clock;
    struct Row {
        const char* text;
        const char* id;
        std::int32_t status, completed, code;
    };
    const std::int32_t done = 1700006460;  // 2023-11-15 00:01
    for (const Row& row : {
             Row{"id:123 sub:001 dlvrd:001 submit date:2311150000 done date:2311150001 stat:DELIVRD err:000 "
                 "text:hi",
                 "123", 2, done, 0},
             Row{"id:123 done date:231115000130 stat:EXPIRED err:017", "123", 3, done + 30, 17},
             Row{"STAT:UNDELIV ERR:5 ID:AbC  DONE DATE:2311150001", "AbC", 5, done, 5},
             Row{"valid:9 id:7 stat:FAILED", "7", 8, 0, 0},
             Row{"id:7 stat:ACKED", "7", 1, 0, 0},
             Row{"id:7 stat:REJECTED", "7", 8, 0, 0},
             Row{"id:7 stat:weird err:x", "7", 0, 0, 0},
             Row{"id:7 done date:99 stat:ACCEPTD", "7", 6, 0, 0},
             Row{"idle talk", "", 0, 0, 0},
         }) {
        const auto receipt = ParseReceipt(row.text, clock);
        ASSERT_TRUE(receipt) << row.text;
        EXPECT_EQ(receipt->id, row.id) << row.text;
        EXPECT_EQ(receipt->status, row.status) << row.text;
        EXPECT_EQ(receipt->completedTime, row.completed) << row.text;
        EXPECT_EQ(receipt->statusCode, row.code) << row.text;
    }
    EXPECT_FALSE(ParseReceipt("hello there", clock));
}

TEST(SmppTime, ReadsAbsoluteAndRelativeForms) {
    VirtualClock clock;
    for (const auto& [text, seconds] : {std::pair{"231115000100000+", 1700006460},
                                        {"231115000100148-", 1700006460},
                                        {"000001020304000R", 1700093784},
                                        {"231115000100000x", 0},
                                        {"2311150001", 0},
                                        {"", 0}}) {
        EXPECT_EQ(ParseSmppTime(text, clock), seconds) << text;
    }
}

TEST(DeliveryReports, StartAsTheSenderAskedFor) {
    VirtualClock clock;
    CSmsDeliveryReports reports(clock);
    reports.RecordSent("a", ReportWanted::kNo);
    reports.RecordSent("b", ReportWanted::kYes);
    reports.RecordSent("c", ReportWanted::kSubmitRequested);
    EXPECT_EQ(reports.Query("a")->status, 11);
    EXPECT_EQ(reports.Query("a")->completedTime, 1'700'000'000);
    EXPECT_EQ(reports.Query("b")->status, 1);
    EXPECT_EQ(reports.Query("b")->completedTime, 0);
    EXPECT_EQ(reports.Query("c")->status, 10);
    EXPECT_FALSE(reports.Query("d"));
}

TEST(DeliveryReports, MatchReceiptsByIdInItsKnownSpellings) {
    struct Row {
        const char* provider;
        std::int32_t format;
        const char* receiptId;
        bool found;
    };
    for (const Row& row : {
             Row{"0000007B", 1, "123", true},  // decimal receipts, padded to the submitted length
             Row{"7B", 0, "7B", true},         //
             Row{"0000007B", 0, "7B", true},   // padded
             Row{"7B", 0, "0000007b", true},   // other case and zeros
             Row{"7B", 0, "123", true},        // decimal although hexadecimal was set
             Row{"123", 0, "7B", true},        // and the other way round
             Row{"abc-XYZ", 0, "ABC-xyz", true},
             Row{"7B", 0, "7C", false},
             Row{"7B", 0, "", false},
         }) {
        CSmsDeliveryReports reports;
        reports.SetReceiptFormat(row.format);
        reports.RecordSent("ref", ReportWanted::kYes);
        reports.RecordProviderReference("ref", row.provider);
        const auto reference = reports.ApplyReceipt({row.receiptId, 2, 1700000000, 3});
        EXPECT_EQ(reference.has_value(), row.found) << row.provider << " " << row.receiptId;
        EXPECT_EQ(reports.Query("ref")->status, row.found ? 2 : 1);
    }
}

TEST(DeliveryReports, AreSavedInTheirFormatAndLoadedBack) {
    const TemporaryFolder folder;
    const std::string file = folder.File("reports");
    const std::string text = "0A1B;;0A1B;;2;;1700000000;;0;;0;;1699999000||0A1C;;;;1;;0;;0;;7;;1699999001";
    CSmsDeliveryReports reports;
    reports.LoadText(text);
    EXPECT_EQ(reports.SaveText(), text);
    ASSERT_EQ(reports.Save(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file), text);
    EXPECT_FALSE(std::filesystem::exists(file + ".new"));

    CSmsDeliveryReports other;
    other.RecordSent("mine", ReportWanted::kNo);
    ASSERT_EQ(other.Load(file), 0);
    EXPECT_EQ(other.Count(), 3U);
    EXPECT_EQ(other.ApplyReceipt({"0A1B", 5, 0, 9}), "0A1B");

    CSmsDeliveryReports swapped;
    swapped.LoadText("prov;;ref;;2", true);
    EXPECT_EQ(swapped.Query("ref")->providerReference, "prov");
    EXPECT_EQ(swapped.SaveText(), "ref;;prov;;2;;0;;0;;0;;0");

    CSmsDeliveryReports none;
    EXPECT_EQ(none.Save(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file), "");
    EXPECT_EQ(none.Load(file), 0);
    EXPECT_EQ(none.Count(), 0U);
}

TEST(DeliveryReports, LoadWhatCanBeReadAndRefuseBadNames) {
    CSmsDeliveryReports reports;
    reports.LoadText("a||b;;c||;;||d;;;;x;;99999999999||");
    EXPECT_EQ(reports.Count(), 4U);
    EXPECT_EQ(reports.Query("d")->completedTime, INT32_MAX);
    reports.Clear();
    reports.LoadText("a||||b");  // an empty piece ends the file
    EXPECT_EQ(reports.Count(), 1U);
    const TemporaryFolder folder;
    EXPECT_EQ(reports.Save(folder.File("no/such/folder")), 33070);
    EXPECT_EQ(reports.Save(folder.File("")), 33070);
    EXPECT_EQ(reports.Save(""), 33070);
    EXPECT_EQ(reports.Load(folder.File("missing")), 33071);
    EXPECT_EQ(reports.Load(folder.File("")), 33071);
}

TEST(DeliveryReports, ANewUseOfAReferenceForgetsTheOldProviderId) {
    CSmsDeliveryReports reports;
    reports.RecordSent("1", ReportWanted::kYes);
    reports.RecordProviderReference("1", "AA");
    reports.RecordSent("1", ReportWanted::kYes);
    EXPECT_FALSE(reports.ApplyReceipt({"AA", 2, 0, 0}));
    reports.RecordProviderReference("1", "BB");
    reports.Remove("1");
    EXPECT_FALSE(reports.ApplyReceipt({"BB", 2, 0, 0}));
    EXPECT_FALSE(reports.Query("1"));
}

TEST(DeliveryReports, ProviderIdsThatDifferInCaseStayApartAndAReusedOneIsTheNewest) {
    CSmsDeliveryReports reports;
    const auto send = [&reports](const char* reference, const char* provider) {
        reports.RecordSent(reference, ReportWanted::kYes);
        reports.RecordProviderReference(reference, provider);
    };
    const auto receiverOf = [&reports](const char* id) {
        return reports.ApplyReceipt({id, 2, 0, 0}).value_or("none");
    };
    send("1", "0ab");
    send("2", "0AB");
    EXPECT_EQ(receiverOf("0ab"), "1");
    EXPECT_EQ(receiverOf("0AB"), "2");
    send("3", "0AB");
    EXPECT_EQ(receiverOf("0AB"), "3");
    reports.Remove("2");  // its id belongs to another message now
    EXPECT_EQ(receiverOf("0AB"), "3");
    reports.Remove("3");
    EXPECT_EQ(receiverOf("AB"), "1");  // loosely
    reports.Remove("1");
    EXPECT_EQ(receiverOf("0AB"), "none");
}

TEST(TLVRecords, KeepOneRecordATagAndTravelAsText) {
    CTLVRecords records;
    CTLVRecord byte{.tag = 0x20F, .type = TLVType::kByte};
    byte.SetInteger(0x12345);
    EXPECT_EQ(byte.Integer(), 0x45U);
    records.AddOrReplace(byte);
    records.AddOrReplace({.tag = 5, .type = TLVType::kOctet, .text = u"abc"});
    records.AddOrReplace({.tag = 6, .type = TLVType::kUnicode, .text = u"left out"});
    byte.type = TLVType::kLong;
    records.AddOrReplace(byte);
    EXPECT_EQ(records.ToText(), u"527;;3;;74565||5;;5;;abc||");
    CTLVRecords read;
    read.FromText(u"527;;3;;74565||5;;5;;abc||7;;6;;x|| ||||8;;1;;1||");
    ASSERT_EQ(read.size(), 4U);
    EXPECT_EQ(read.Find(527)->Integer(), 74565U);
    EXPECT_EQ(read.Find(7)->text, u"x");
    EXPECT_EQ(read.Find(8), nullptr);
}

}  // namespace
