// The SMS record, its formats, and the delivery statuses.
#include "sms/MessageFormats.h"
#include "sms/SmsConstants.h"
#include "sms/SmsMessageX.h"

#include <gtest/gtest.h>

namespace {

TEST(MessageFormats, HaveTheirCodingAndLogName) {
    struct Row {
        std::int32_t format;
        const char* name;
        std::uint8_t dcs;
        bool multipart;
    };
    for (const Row& row :
         {Row{0, "TEXT", 0x00, false}, Row{1, "TEXT_FLASH", 0x10, false},
          Row{2, "TEXT_MULTIPART", 0x00, true}, Row{3, "UNKNOWN", 0x10, true}, Row{10, "DATA", 0xF5, false},
          Row{11, "DATA_UDH", 0xF5, true}, Row{20, "UNICODE", 0x08, false},
          Row{21, "UNICODE_FLASH", 0x18, false}, Row{22, "UNICODE_MULTIPART", 0x08, true},
          Row{23, "UNICODE_MULTIPART_FLASH", 0x18, true}, Row{30, "UNKNOWN", 0x00, false},
          Row{74, "UNKNOWN", 0x00, false}, Row{-7, "UNKNOWN", 0x00, false}}) {
        EXPECT_EQ(FormatOf(row.format).name, row.name) << row.format;
        EXPECT_EQ(FormatOf(row.format).Dcs(), row.dcs) << row.format;
        EXPECT_EQ(FormatOf(row.format).multipart, row.multipart) << row.format;
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

TEST(SmsConstants, DescribeAndCompleteEveryDeliveryStatus) {
    struct Row {
        std::int32_t status;
        const char* text;
        bool completed;
    };
    for (const Row& row : {Row{0, "Scheduled", false}, Row{1, "Enroute", false}, Row{2, "Delivered", true},
                           Row{9, "Skipped", true}, Row{10, "Submit requested", false},
                           Row{11, "Submitted", true}, Row{13, "Insufficient credits", true},
                           Row{14, "Unspecified", false}, Row{-1, "Unspecified", false}}) {
        EXPECT_EQ(DeliveryStatusText(row.status), row.text) << row.status;
        EXPECT_EQ(IsCompletedStatus(row.status), row.completed) << row.status;
    }
}

}  // namespace
