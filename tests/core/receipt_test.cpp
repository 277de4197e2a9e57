// Receipts and times as SMPP servers write them.
#include "Common/SmppPdu/SmppTime.h"
#include "sms/SmsReceipt.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

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
             Row{"id: 123 stat: DELIVRD err: 017", "123", 2, 0, 17},
             Row{"id: stat:DELIVRD err: text:hi", "", 2, 0, 0},
             Row{"id:0x7B stat:DELIVRD", "0x7B", 2, 0, 0},
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

TEST(Receipt, IsWholeWithAnIdAndAState) {
    for (const auto& [text, whole] : {std::pair{"id:123 stat:DELIVRD", true},
                                      {"ID:123 done date:2311150001 STAT:enroute", true},
                                      {"id:123 please call back", false},
                                      {"id:123 stat:", false},
                                      {"id:123 stat:42%", false},
                                      {"Ticket id:123 stat:open please call", false},
                                      {"id:123 stat:delivrdx", false},
                                      {"id: stat:DELIVRD", false},
                                      {"stat:DELIVRD", false},
                                      {"paid:123 stat:DELIVRD", false},
                                      {"id:123 thermostat:high", false}}) {
        const auto receipt = ParseReceipt(text);
        EXPECT_EQ(receipt && receipt->isWhole, whole) << text;
    }
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

}  // namespace
