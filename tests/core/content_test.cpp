// The content builders octet by octet. Expected octets follow WAP-167/168 (SI, SL), WAP-192 (WBXML),
// OMA-MMS-ENC and vCard 2.1, and the builders' documented departures from them.
#include "foundation/Hex.h"
#include "smsdata/SmsDataMmsNotification.h"
#include "smsdata/SmsDataWapBookmark.h"
#include "smsdata/SmsDataWapPush.h"
#include "smsdata/SmsDatavCard.h"
#include "support/Octets.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

// What the builders give: hexadecimal without blanks.
std::string Expected(std::string_view pattern) { return HexOf(OctetText(pattern)); }

std::string EveryOctet() {
    std::string all;
    for (int i = 1; i < 256; ++i) all.push_back(static_cast<char>(i));
    return all;
}

constexpr const char* kPushPorts = "06 05 04 0B84 23F0 ";

TEST(WapPush, ServiceIndications) {
    struct Row {
        const char* url;
        const char* description;
        const char* reference;
        std::int32_t action;
        const char* document;
    };
    for (const Row& row : {
             Row{"http://www.x.org/a", "Hi", "", 2, "0C 03 'www.x.org/a' 00  07  01 03 'Hi' 00 01 01"},
             Row{"HTTPS://WWW.x.org/", "", "id", 0, "0E 03 'WWW.x.org/' 00  11 03 'id' 00  01 03 00 01 01"},
             Row{"x.org", "a", "", 1, "0B 03 'x.org' 00  06  01 03 'a' 00 01 01"},
             Row{"", "", "", 4, "0B 03 00  09  01 03 00 01 01"},
             Row{"http://a?http://b", "", "", 3,
                 "0C 03 'a?b' 00  08  01 03 00 01 01"},                           // every occurrence goes
             Row{"http://https://a", "", "", 0, "0E 03 'a' 00  01 03 00 01 01"},  // the last match counts
             Row{"hthttp://tp://www.a", "", "", 0,
                 "0D 03 'a' 00  01 03 00 01 01"},                       // looked for one after the other
             Row{"x", "", "", -5, "0B 03 'x' 00  00  01 03 00 01 01"},  // any number, one octet
             Row{"x", "", "", INT32_MAX, "0B 03 'x' 00  04  01 03 00 01 01"},
             Row{"x", "", "", INT32_MIN, "0B 03 'x' 00  05  01 03 00 01 01"},
         }) {
        CSmsDataWapPush push;
        push.URL = row.url;
        push.Description = row.description;
        push.SignalReference = row.reference;
        push.SignalAction = row.action;
        push.Encode();
        EXPECT_EQ(push.EncodedMessage,
                  Expected(std::string(kPushPorts) + "01 06 01 AE  02 05 6A 00  45 C6 " + row.document))
            << row.url;
    }
}

TEST(WapPush, ServiceLoads) {
    for (const auto& [url, action, type, document] : {
             std::tuple{"https://x.org/", 2, 1, "0B 03 'x.org/' 00 07 01"},
             std::tuple{"http://x.org/", 1, -1, "09 03 'x.org/' 00 06 01"},
             std::tuple{"ftp://x", 0, 7, "08 03 'ftp://x' 00 01"},
             std::tuple{"ftp://x", INT32_MAX, INT32_MAX, "08 03 'ftp://x' 00 04 01"},
             std::tuple{"ftp://x", INT32_MIN, INT32_MIN, "08 03 'ftp://x' 00 05 01"},
         }) {
        CSmsDataWapPush push;
        push.URL = url;
        push.Description = "not in a service load";
        push.ExecuteAction = action;
        push.ConnectionType = type;
        push.Encode();
        EXPECT_EQ(push.EncodedMessage,
                  Expected(std::string(kPushPorts) + "01 06 01 B0  02 06 6A 00  85 " + document));
    }
}

TEST(WapPush, ClearKeepsResultAndTransactionCounter) {
    CSmsDataWapPush push;
    push.URL = "http://x";
    for (int i = 1; i < 300; ++i) {
        push.Encode();
        EXPECT_EQ(push.EncodedMessage.substr(14, 2), HexOf(std::string(1, static_cast<char>(i))));
    }
    const std::string last = push.EncodedMessage;
    push.ConnectionType = push.ExecuteAction = 1;
    push.Clear();
    EXPECT_EQ(push.EncodedMessage, last);
    EXPECT_EQ(std::tuple(push.URL, push.ConnectionType, push.SignalAction, push.ExecuteAction),
              std::tuple("", 0, 2, 0));
}

TEST(WapBookmark, WritesNameAndAddressAsTheyAre) {
    const std::string head =
        "06 05 04 C34F C002  01 06 2D 1F 2B 'application/x-wap-prov.browser-bookmarks' 00 81EA  01 01 6A 00 "
        "45 C6 7F 01  87 15 11 03 ";
    CSmsDataWapBookmark bookmark;
    bookmark.Description = "News";
    bookmark.URL = "http://www.x.org/";
    bookmark.Encode();
    EXPECT_EQ(bookmark.EncodedMessage,
              Expected(head + "'News' 00 01  87 17 11 03 'http://www.x.org/' 00 01  01 01"));
    bookmark.Clear();
    EXPECT_EQ(bookmark.EncodedMessage, "");
    bookmark.Encode();
    std::string empty = Expected(head + "00 01  87 17 11 03 00 01  01 01");
    empty[15] = '2';  // the second transaction
    EXPECT_EQ(bookmark.EncodedMessage, empty);
}

TEST(MmsNotification, WritesTheFieldsThatAreSet) {
    VirtualClock clock;
    const auto now = static_cast<std::uint32_t>(clock.Now());
    const auto time = [](std::uint32_t seconds) {
        std::string text;
        hex::AppendNumber(text, seconds);
        return text;
    };
    const std::string head =
        std::string(kPushPorts) + "01 06 22 'application/vnd.wap.mms-message' 00 AF84  8C82 98 ";
    CSmsDataMmsNotification notification(clock);
    notification.ContentLocation = "http://mmsc/1";
    notification.MessageSize = 1000;
    notification.Encode();
    EXPECT_EQ(notification.EncodedMessage,
              Expected(head + "'" + time(now) + "' 00  8D90  8A80  8E 04 000003E8  88 06 80 04 " +
                       time(now + 86400) + "  83 'http://mmsc/1' 00"));
    clock.Sleep(1000);
    notification.Encode();
    EXPECT_EQ(notification.EncodedMessage.find(Expected("'" + time(now) + "'")), std::string::npos);

    CSmsDataMmsNotification full(clock);
    full.From = "+31612345678/TYPE=PLMN@example.org";  // 34 characters: the length octet is still one
    full.Subject = "Hello";
    full.Class = 2;
    full.Expiration = -1;
    full.MessageSize = -1;
    full.TransactionId = "t1";
    full.Encode();
    EXPECT_EQ(full.EncodedMessage, Expected(head + "'t1' 00  8D90  89 24 80 '" + full.From +
                                            "' 00  96 'Hello' 00  8A82  8E 04 FFFFFFFF "
                                            "88 06 80 04 " +
                                            time(now + 1 - 3600) + "  83 00"));
    full.Clear();
    EXPECT_EQ(std::tuple(full.From, full.Expiration, full.Class, full.EncodedMessage),
              std::tuple("", 24, 0, ""));
}

TEST(MmsNotification, TakesTheLimitsOfItsNumbers) {
    VirtualClock clock;
    for (const auto& [limit, messageClass, size] :
         {std::tuple{INT32_MAX, "7F", "7FFFFFFF"}, std::tuple{INT32_MIN, "80", "80000000"}}) {
        CSmsDataMmsNotification notification(clock);
        notification.Class = notification.MessageSize = notification.Expiration = limit;
        notification.TransactionId = "t";
        notification.Encode();
        std::string expiry;
        hex::AppendNumber(expiry, static_cast<std::uint32_t>(clock.Now() + limit * std::int64_t{3600}));
        EXPECT_TRUE(notification.EncodedMessage.ends_with(Expected(
            std::string("8A") + messageClass + " 8E 04" + size + " 88 06 80 04" + expiry + " 83 00")))
            << notification.EncodedMessage;
    }
}

TEST(VCard, WritesTheLinesInTheOrderOfTheCard) {
    const std::string head = "06 05 04 23F4 0000 'BEGIN:VCARD' 0D0A 'VERSION:2.1' 0D0A ";
    const std::string tail = "'END:VCARD' 0D0A";
    CSmsDatavCard card;
    card.Encode();
    EXPECT_EQ(card.EncodedMessage, Expected(head + tail));
    card.Name = u"Bob";
    card.Encode();
    card.Encode();
    EXPECT_EQ(card.EncodedMessage, Expected(head + "'N:Bob' 0D0A " + tail));
    card.Name = u"Ren\u00e9";
    card.Phone = u"1";
    card.PhoneWork = u"2";
    card.PhoneHome = u"3";
    card.Mobile = u"4";
    card.Pager = u"5";
    card.Fax = u"6";
    card.Email = u"a@b";
    card.Title = u"Dr; x";
    card.URL = u"u";
    card.Encode();
    EXPECT_EQ(card.EncodedMessage,
              Expected(head +
                       "'N:Ren' FFFFFFE9 0D0A 'TEL;PREF:1' 0D0A 'TEL;HOME:3' 0D0A 'TEL;WORK:2' 0D0A "
                       "'TEL;CELLPHONE:4' 0D0A 'TEL;PAGER:5' 0D0A 'TEL;FAX:6' 0D0A 'EMAIL:a@b' 0D0A "
                       "'TITLE:Dr; x' 0D0A 'URL:u' 0D0A " +
                       tail));
    card.Clear();
    EXPECT_EQ(card.Name.size() + card.EncodedMessage.size(), 0U);
}

// Every octet value and 64 KiB in every text: nothing is cut, changed or written past an end.
TEST(Contents, TakeAnyTextByteForByte) {
    std::string large;
    while (large.size() < 65536) large += EveryOctet();
    for (const std::string& text : {EveryOctet(), large, std::string(1, '\0') + "after zero"}) {
        CSmsDataWapPush push;
        push.URL = push.Description = push.SignalReference = text;
        push.Encode();
        EXPECT_EQ(OctetText(push.EncodedMessage),
                  OctetText((std::string(kPushPorts) + "01 06 01 AE 02 05 6A 00 45 C6 0B 03")) + text +
                      std::string("\0\x11\x03", 3) + text + std::string("\0\x07\x01\x03", 4) + text +
                      std::string("\0\x01\x01", 3));
        CSmsDataWapBookmark bookmark;
        bookmark.URL = bookmark.Description = text;
        bookmark.Encode();
        EXPECT_EQ(OctetText(bookmark.EncodedMessage).substr(63),
                  "\x87\x15\x11\x03" + text + std::string("\0\x01\x87\x17\x11\x03", 6) + text +
                      std::string("\0\x01\x01\x01", 4));
        CSmsDataMmsNotification notification;
        notification.From = notification.Subject = notification.ContentLocation = notification.TransactionId =
            text;
        notification.Encode();
        const std::string octets = OctetText(notification.EncodedMessage);
        EXPECT_EQ(octets.size(), 74 + 4 * text.size());
        EXPECT_TRUE(octets.ends_with('\x83' + text + '\0'));
        EXPECT_NE(octets.find("\x98" + text + '\0'), std::string::npos);
    }
    CSmsDatavCard card;
    for (char16_t c = 0; c < 0xFFFF; ++c) card.Name.push_back(c);
    card.Encode();
    EXPECT_GT(card.EncodedMessage.size(), 2U * 0xFFFF);
}

}  // namespace
