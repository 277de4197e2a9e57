// Provider files: rows over the fields of any owner.
#include "foundation/ErrorTexts.h"
#include "foundation/ProviderFile.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

struct Settings {
    std::string host = "old";
    std::int32_t port = 80;
    struct Proxy {
        std::string host;
        std::int32_t port = -1;
    } proxy;
    bool secure = false;
    std::string list = "kept";
};

std::vector<ProviderRow> RowsOf(Settings& s) {
    return {
        {"Provider", "Host", &s.host},
        {"Provider", "Port", &s.port},
        {"Provider", "Secure", &s.secure},
        {"Proxy", "Host", &s.proxy.host},
        {"Proxy", "Port", &s.proxy.port},
        {"Provider", "List",
         ProviderRow::Access{[&s] { return s.list; }, [&s](const std::string& text) { s.list = text; }}},
    };
}

TEST(ProviderFile, SavesInTheOrderOfTheRowsAndKeepsWhatElseTheFileHolds) {
    const TemporaryFolder folder;
    const std::string file = folder.File("p.ini");
    Settings settings{.host = "gw", .port = 8080, .proxy = {"px", 3128}, .secure = true, .list = "a;b"};
    EXPECT_EQ(SaveProviderFile(file, RowsOf(settings)), 0);
    EXPECT_EQ(TemporaryFolder::Read(file),
              "[Provider]\nHost=gw\nPort=8080\nSecure=1\nList=a;b\n[Proxy]\nHost=px\nPort=3128\n");
    TemporaryFolder::Write(file, "[Mine]\nx=1\n[provider]\nnote\nport = 1\nMore=2\n");
    EXPECT_EQ(SaveProviderFile(file, RowsOf(settings)), 0);
    EXPECT_EQ(TemporaryFolder::Read(file),
              "[Mine]\nx=1\n[provider]\nnote\nPort=8080\nMore=2\nHost=gw\nSecure=1\nList=a;b\n"
              "[Proxy]\nHost=px\nPort=3128\n");
    EXPECT_EQ(SaveProviderFile("", RowsOf(settings)), 33052);
    EXPECT_EQ(SaveProviderFile(folder.File("none/p.ini"), RowsOf(settings)), 33052);
}

TEST(ProviderFile, AValueStaysALineAndKeepsItsBlanks) {
    const TemporaryFolder folder;
    const std::string file = folder.File("p.ini");
    struct Row {
        std::string value;
        std::string loaded;
    };
    for (const Row& row :
         std::vector<Row>{{" two ", " two "},
                          {"\t", "\t"},
                          {"\"quoted\"", "\"quoted\""},
                          {"'", "'"},
                          {"\"", "\""},
                          {"''", "''"},
                          {"a\"b", "a\"b"},
                          {"x;[y]=z", "x;[y]=z"},
                          {"OK\r\nPort=1\n[Proxy]\nHost=evil", "OK  Port=1 [Proxy] Host=evil"},
                          {std::string("a\0b", 3), "a b"},
                          {std::string(2'000'000, 'x'), std::string(2'000'000, 'x')}}) {
        Settings settings{.host = row.value, .proxy = {"px", 2}};
        TemporaryFolder::Write(file, "; a remark\n[Mine]\nx=1\n");
        EXPECT_EQ(SaveProviderFile(file, RowsOf(settings)), 0);
        EXPECT_TRUE(TemporaryFolder::Read(file).starts_with("; a remark\n[Mine]\nx=1\n"));
        Settings loaded;
        EXPECT_EQ(LoadProviderFile(file, RowsOf(loaded)), 0);
        EXPECT_EQ(loaded.host, row.loaded);
        EXPECT_EQ(loaded.proxy.host, "px");
        EXPECT_EQ(loaded.port, 80);
    }
}

TEST(ProviderFile, LoadsWhatIsThereAndLeavesTheRest) {
    const TemporaryFolder folder;
    const std::string file = folder.File("p.ini");
    struct Row {
        const char* text;
        std::int32_t code;
        Settings expected;
    };
    for (const Row& row : {
             Row{"[Provider]\nHost= gw \nPORT=-5\nSecure=1\nList=x\n[Proxy]\nHost=px\nPort=3128x\n",
                 0,
                 {.host = "gw", .port = -5, .proxy = {"px", 3128}, .secure = true, .list = "x"}},
             Row{"[Provider]\nHost=\nPort=\nSecure=\n", 0, {.host = ""}},
             Row{"[Provider]\nHost=\"q\"\nSecure=True\n", 0, {.host = "q", .secure = true}},
             Row{"[proxy]\nport=x\n", 0, {}},
             Row{"[Provider]\n[Other]\nHost=x\n", 33051, {}},
             Row{"Host=x\n", 33051, {}},
             Row{"", 33051, {}},
         }) {
        SCOPED_TRACE(row.text);
        TemporaryFolder::Write(file, row.text);
        Settings settings;
        EXPECT_EQ(LoadProviderFile(file, RowsOf(settings)), row.code);
        EXPECT_EQ(settings.host, row.expected.host);
        EXPECT_EQ(settings.port, row.expected.port);
        EXPECT_EQ(settings.secure, row.expected.secure);
        EXPECT_EQ(settings.proxy.host, row.expected.proxy.host);
        EXPECT_EQ(settings.proxy.port, row.expected.proxy.port);
        EXPECT_EQ(settings.list, row.expected.list);
    }
    Settings settings;
    EXPECT_EQ(LoadProviderFile(folder.File("none.ini"), RowsOf(settings)), 33050);
}

TEST(ProviderFile, WhatIsNoNumberOrFlagIsAsGoodAsMissing) {
    const TemporaryFolder folder;
    const std::string file = folder.File("p.ini");
    constexpr std::int32_t kKept = 80;
    struct Row {
        const char* value;
        std::int32_t number;
        bool ofTrue, ofFalse;  // what a flag is that was true, or false, before
    };
    for (const Row& row : std::vector<Row>{
             {"", kKept, true, false},
             {"abc", kKept, true, false},
             {"-", kKept, true, false},
             {"x1", kKept, true, false},
             {"\"\"", kKept, true, false},
             {"0", 0, false, false},
             {"-0", 0, false, false},
             {"+7", 7, true, true},
             {"'12'", 12, true, true},
             {"3128x", 3128, true, true},
             {"2147483648", 2147483647, true, true},
             {"-99999999999999999999", -2147483647 - 1, true, true},
             {"yes", kKept, true, true},
             {"TRUE", kKept, true, true},
             {"No", kKept, false, false},
             {"false", kKept, false, false},
             {"nothing", kKept, true, false},
         }) {
        SCOPED_TRACE(row.value);
        TemporaryFolder::Write(
            file, std::string("[P]\nN=") + row.value + "\nT=" + row.value + "\nF=" + row.value + "\n");
        std::int32_t number = kKept;
        bool wasTrue = true;
        bool wasFalse = false;
        const std::vector<ProviderRow> rows{{"P", "N", &number}, {"P", "T", &wasTrue}, {"P", "F", &wasFalse}};
        EXPECT_EQ(LoadProviderFile(file, rows), 0);
        EXPECT_EQ(number, row.number);
        EXPECT_EQ(wasTrue, row.ofTrue);
        EXPECT_EQ(wasFalse, row.ofFalse);
    }
}

}  // namespace
