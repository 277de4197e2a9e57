// Result codes and their texts.
#include "foundation/ErrorTexts.h"

#include <gtest/gtest.h>

namespace {

TEST(ErrorTexts, GivesTheFixedTextOfEveryCode) {
    struct Row {
        std::int32_t code;
        const char* text;
    };
    for (const Row& row : {
             Row{0, "Success"},
             Row{101, "Send HELO command failed"},
             Row{591, "No response from SMTP server"},
             Row{10060,
                 "A connection attempt failed because the connected party did not properly respond after a "
                 "period of time, or established connection failed because connected host has failed to "
                 "respond"},
             Row{31678, "There is no answer."},
             Row{31749, "The phone number is not valid."},
             Row{31836,
                 "The connection attempt failed because the computer is not capable of Network Access "
                 "Protection."},
             Row{31869, "The password of the certificate's private key is not valid."},
             Row{33216, "Recipient address blocked or nut supported by SMPP provider"},
             Row{33807, "MM7 Error: Message forumat corrupt"},
             Row{34141, "Invalid MmsMessage object passed to send function"},
             Row{34200, "Invalid PagerMessage object passed to the Send function"},
             Row{30114, "Generic Error"},
             Row{99999, "Generic Error"},
             Row{-1, "Generic Error"},
             Row{33999, "Generic Error"},
             Row{INT32_MIN, "Generic Error"},
             Row{INT32_MAX, "Generic Error"},
         }) {
        EXPECT_EQ(DescribeError(row.code), row.text) << row.code;
    }
    EXPECT_EQ(DescribeErrorWithNumber(33060), "Error #33060: No more messages in receive buffer");
    EXPECT_EQ(DescribeErrorWithNumber(-5), "Error #-5: Generic Error");
}

// raserror.h numbers them without a gap from 600.
TEST(ErrorTexts, EveryRemoteAccessErrorHasItsText) {
    for (std::int32_t error = 600; error <= 869; ++error) {
        EXPECT_NE(DescribeError(31000 + error), "Generic Error") << error;
    }
}

}  // namespace
