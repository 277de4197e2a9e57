// Recipients as users write them, and what counts as an address.
#include "foundation/Addresses.h"

#include <gtest/gtest.h>
#include <string>

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

TEST(Addresses, NumbersAreCheckedAtTwoLevels) {
    struct Row {
        std::string text;
        bool number;
        std::int32_t code;
    };
    for (const Row& row :
         {Row{"123", false, 34031}, Row{"", false, 34031}, Row{"0612345678", true, 0},
          Row{"+31612345678", true, 0}, Row{"S1234", true, 0}, Row{"A1234", true, 0},
          Row{"X1234", true, 34032}, Row{"x1234", true, 34032}, Row{"+3161234567a", false, 34031},
          Row{"dl:x", true, 0}, Row{"my dl:x", true, 0}, Row{"*1234", true, 0},
          Row{"+" + std::string(63, '1'), true, 0}, Row{"+" + std::string(64, '1'), false, 34031}}) {
        EXPECT_EQ(address::IsNumber(row.text), row.number) << row.text;
        EXPECT_EQ(address::CheckNumber(row.text), row.code) << row.text;
    }
}

TEST(Addresses, EachKindHasItsForm) {
    struct Row {
        std::string text;
        bool pdu, dial, ipv4, mail;
    };
    for (const Row& row : {
             Row{"", false, false, false, false},
             Row{"12", false, true, false, false},
             Row{"123", true, true, false, false},
             Row{"+31612345678", true, true, false, false},
             Row{"0031612345678", false, true, false, false},
             Row{"S1234", true, false, false, false},
             Row{"a1234", false, true, false, false},
             Row{std::string(20, '1'), true, true, false, false},
             Row{std::string(21, '1'), false, true, false, false},
             Row{std::string(33, '1'), false, false, false, false},
             Row{"0,w5 55-*#@", false, true, false, false},
             Row{"0T5", false, false, false, false},
             Row{"10.0.0.255", false, false, true, false},
             Row{"10.0.0.256", false, false, false, false},
             Row{"10.0.0", false, false, false, false},
             Row{"10..0.1", false, false, false, false},
             Row{"10.0.0.99999999999", false, false, false, false},
             Row{"10.0.0.x", false, false, false, false},
             Row{"x@y", false, false, false, true},
             Row{"a.b+c@d.example", false, false, false, true},
             Row{"@y", false, false, false, false},
             Row{"x@", false, false, false, false},
             Row{"a||b@c", false, false, false, false},
             Row{"x b@c", false, false, false, false},
             Row{"<a@b>", false, false, false, false},
             Row{"a\r\n@b", false, false, false, false},
             Row{std::string(62, 'a') + "@b", false, false, false, true},
             Row{std::string(63, 'a') + "@b", false, false, false, false},
         }) {
        EXPECT_EQ(address::IsPduNumber(row.text), row.pdu) << row.text;
        EXPECT_EQ(address::IsDialNumber(row.text), row.dial) << row.text;
        EXPECT_EQ(address::IsIPv4(row.text), row.ipv4) << row.text;
        EXPECT_EQ(address::IsMail(row.text), row.mail) << row.text;
    }
}

}  // namespace
