// Which packet-data context a device is dialled with.
#include "gsm/PacketContext.h"

#include <gtest/gtest.h>

namespace {

TEST(PacketContext, AnAccessPointKeepsItsContextAndElseTakesAFreeOne) {
    struct Row {
        const char* name;
        std::string offered, inUse;
        std::uint32_t id;
        bool isDefined = false;
    };
    const auto context = [](const char* id, const char* apn) {
        return "+CGDCONT: " + std::string(id) + ",\"IP\",\"" + apn + "\",\"0.0.0.0\",0,0\r\n";
    };
    const std::string range = "+CGDCONT: (1-3),\"IP\",,,(0-2),(0-4)\r\n";
    const std::string ok = "OK";
    for (const Row& row : {
             Row{"nothing in use", range + ok, ok, 1},
             Row{"the lowest", range + ok, context("1", "a") + context("3", "b") + ok, 2},
             Row{"not in order", range + ok, context("2", "a") + context("1", "b") + ok, 3},
             Row{"all in use", range + ok, context("1", "a") + context("2", "b") + context("3", "c") + ok, 3},
             Row{"there already", range + ok, context("1", "a") + context("2", "mms") + ok, 2, true},
             Row{"there in capitals", range + ok, context("3", "MMS") + ok, 3, true},
             Row{"the first of two", range + ok, context("2", "mms") + context("1", "mms") + ok, 2, true},
             Row{"a longer name", range + ok, context("1", "mms.example.org") + ok, 2},
             Row{"a name with a comma", range + ok, context("1", "a,mms") + ok, 2},
             Row{"there under 0", range + ok, context("0", "mms") + ok, 0, true},
             Row{"from 0", "+CGDCONT: (0-2),\"IP\"\r\nOK", ok, 1},
             Row{"from 5", "+CGDCONT: (5-7),\"IP\"\r\nOK", context("1", "a") + ok, 5},
             Row{"single numbers", "+CGDCONT: (1,2,4),\"IP\"\r\nOK", context("1", "a") + context("2", "b"),
                 4},
             Row{"ranges and numbers", "+CGDCONT: (7-9,3),\"IP\"\r\nOK", context("7", "a"), 3},
             Row{"one number", "+CGDCONT: 1,\"IP\"\r\nOK", context("1", "a"), 1},
             Row{"another kind first", "+CGDCONT: (1-2),\"PPP\"\r\n+CGDCONT: (5-6),\"IP\"\r\nOK", ok, 5},
             Row{"no kind for IP", "+CGDCONT: (8-9),\"PPP\"\r\nOK", ok, 8},
             Row{"small letters", "+cgdcont: (1-3),\"ip\"\r\nOK", "+cgdcont: 1,\"ip\",\"a\"\r\nOK", 2},
             Row{"a range without end", "+CGDCONT: (1-2147483647),\"IP\"\r\nOK", context("1", "a"), 2},
             Row{"a number too large", "+CGDCONT: (2147483647-99999999999),\"IP\"\r\nOK",
                 context("2147483647", "a"), 2147483647},
             Row{"a range backwards", "+CGDCONT: (3-1),\"IP\"\r\nOK", ok, 0},
             Row{"nothing offered", ok, ok, 0},
             Row{"no values", "+CGDCONT:\r\nOK", "+CGDCONT:\r\nOK", 0},
             Row{"a negative number", range + ok, context("-4", "mms") + ok, 1},
         }) {
        SCOPED_TRACE(row.name);
        const PacketContext chosen = ChoosePacketContext(row.offered, row.inUse, "mms");
        EXPECT_EQ(chosen.id, row.id);
        EXPECT_EQ(chosen.isDefined, row.isDefined);
    }
}

}  // namespace
