// The delivery-report store.
#include "sms/SmsDeliveryReports.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

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

TEST(DeliveryReports, AreForgottenWhenOld) {
    VirtualClock clock;
    CSmsDeliveryReports reports(clock);
    reports.RecordSent("old", ReportWanted::kYes);
    reports.RecordProviderReference("old", "77");
    clock.Sleep(10'000);
    reports.RecordSent("new", ReportWanted::kYes);
    for (const auto& [seconds, left] : {std::pair{11, 2U}, {10, 2U}, {9, 1U}, {0, 1U}}) {
        reports.RemoveOlderThan(seconds);
        EXPECT_EQ(reports.Count(), left) << seconds;
    }
    EXPECT_FALSE(reports.Query("old"));
    EXPECT_FALSE(reports.ApplyReceipt({"77", 2, 0, 0}));
    clock.Sleep(1000);
    reports.RemoveOlderThan(0);
    EXPECT_EQ(reports.Count(), 0U);
}

}  // namespace
