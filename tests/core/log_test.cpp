// Log and activity files.
#include "foundation/IniFile.h"
#include "foundation/KorBase.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace {

constexpr const char* kPrefix = "[22:13:20]  ";  // the virtual clock's start

class Logging : public testing::Test {
  protected:
    TemporaryFolder folder;
    VirtualClock clock;
    CKorBase base{"CTest", clock};
    std::string log = folder.File("a.log");
    std::string activity = folder.File("a.ini");
};

TEST_F(Logging, WritesWhatTheMaskSays) {
    struct Row {
        unsigned mask;
        const char* text;
        const char* log;
        const char* entry;
    };
    for (const Row& row : {
             Row{1, "AT\r\nOK\r\n", "AT <CRLF> OK\n", nullptr},
             Row{1, "a\rb\nc\n\r\n", "a <CR> b <LF> c\n", nullptr},
             Row{2, "x\ny", nullptr, "x <LF> y"},
             Row{3, "both\n", "both\n", "both"},
             Row{4, "dump\r\nline\n", "dump\r\nline\n\n", nullptr},
             Row{6, "event\n", "event\n\n", "event"},
             Row{0, "nothing", nullptr, nullptr},
         }) {
        std::filesystem::remove(log);
        base.SetLogFile(log);
        base.SetActivityFile(activity);
        base.Log(row.mask, "%s", row.text);
        EXPECT_EQ(std::filesystem::exists(log), row.log != nullptr) << row.text;
        const std::string logged = row.log != nullptr ? std::string(kPrefix) + row.log : std::string();
        EXPECT_EQ(TemporaryFolder::Read(log), logged);
        const std::string entries =
            row.entry != nullptr ? std::string("00000000|") + kPrefix + row.entry + "\n" : std::string();
        const std::string next = row.entry != nullptr ? "1" : "0";
        std::string expected = "[Init]\nInitialized=1\nNextEntry=" + next + "\n";
        if (row.entry != nullptr) expected += "[Log]\n" + entries;
        EXPECT_EQ(TemporaryFolder::Read(activity), expected);
    }
}

TEST_F(Logging, NothingIsWrittenWithoutNames) {
    base.Log(7, "text");
    EXPECT_TRUE(std::filesystem::is_empty(std::filesystem::path(log).parent_path()));
}

TEST_F(Logging, TheActivityFileIsARingOfOneHundredWithRunningKeys) {
    base.SetActivityFile(activity);
    for (int i = 0; i < 101; ++i) base.Log(2, "entry %d", i);
    const IniFile ini = IniFile::Load(activity);
    ASSERT_EQ(ini.Lines("Log").size(), 100U);
    EXPECT_EQ(ini.Lines("Log").front(), std::string("00000001|") + kPrefix + "entry 1");
    EXPECT_EQ(ini.Lines("Log").back(), std::string("00000064|") + kPrefix + "entry 100");
    EXPECT_EQ(ini.Number("Init", "NextEntry"), 101U);
    base.SetActivityFile(activity);
    EXPECT_EQ(TemporaryFolder::Read(activity), "[Init]\nInitialized=1\nNextEntry=0\n");
}

TEST_F(Logging, LongActivityEntriesAreCutAt1023) {
    struct Row {
        std::size_t text, stored;
    };
    const std::size_t prefix = std::string(kPrefix).size();
    for (const Row& row : {Row{1023 - prefix, 1023}, Row{1024 - prefix, 1023}, Row{2000, 1023}}) {
        base.SetActivityFile(activity);
        base.Log(2, "%s", std::string(row.text, 'x').c_str());
        const std::string entry = IniFile::Load(activity).Lines("Log").at(0).substr(9);
        EXPECT_EQ(entry.size(), row.stored);
        EXPECT_EQ(entry.ends_with("x..."), row.text > 1023 - prefix);
    }
}

TEST_F(Logging, LongTextsEndAtTheBufferUnlessTheirSizeIsGiven) {
    base.SetLogFile(log);
    const std::string text(100'000, 'y');
    base.Log(1, "%s", text.c_str());
    EXPECT_EQ(std::filesystem::file_size(log), 65536U);
    std::filesystem::remove(log);
    base.LogSized(1, text.size() + 2048, "%s", text.c_str());
    EXPECT_EQ(TemporaryFolder::Read(log), kPrefix + text + "\n");
    std::filesystem::remove(log);
    base.LogSized(1, 9, "%s", text.c_str());  // a hint that is far too small
    EXPECT_EQ(std::filesystem::file_size(log), 9U + 2047U);
}

TEST_F(Logging, FilesThatCannotBeUsedAreSkipped) {
    const std::string here = std::filesystem::path(log).parent_path().string();
    for (const std::string& name :
         {here, here + "/missing/a.log", std::string(64 * 1024, 'n'), std::string("\0x", 2)}) {
        base.SetLogFile(name);
        base.SetActivityFile(name);
        base.Log(7, "text");
        EXPECT_EQ(base.LogFile(), name);
    }
    EXPECT_TRUE(std::filesystem::exists(here));
}

TEST_F(Logging, ANameWithAZeroOctetNamesNoFile) {
    TemporaryFolder::Write(log, "kept");
    base.SetLogFile(log + std::string("\0x", 2));
    base.SetActivityFile(log + std::string("\0y", 2));
    base.Log(7, "text");
    EXPECT_EQ(TemporaryFolder::Read(log), "kept");
}

TEST_F(Logging, EntryNumbersUseAllThirtyTwoBits) {
    for (const auto& [stored, key, next] : {std::tuple{"2147483647", "7FFFFFFF|", 2147483648U},
                                            {"4294967295", "FFFFFFFF|", 0U},
                                            {"4294967296", "00000000|", 1U},
                                            {"x", "00000000|", 1U}}) {
        base.SetActivityFile(activity);
        TemporaryFolder::Write(activity, std::string("[Init]\nNextEntry=") + stored + "\n");
        base.Log(2, "text");
        EXPECT_TRUE(IniFile::Load(activity).Lines("Log").at(0).starts_with(key)) << stored;
        EXPECT_EQ(IniFile::Load(activity).Number("Init", "NextEntry", 7), next) << stored;
    }
}

TEST_F(Logging, ADamagedActivityFileStillTakesEntries) {
    for (const std::string& damage :
         {std::string("\0\xff[Log\n=\nNextEntry=zz", 20), std::string("[Log]\ngarbage\n"),
          std::string(200'000, '['), std::string("[Init]\nNextEntry=99999999999999\n")}) {
        base.SetActivityFile(activity);
        TemporaryFolder::Write(activity, damage);
        base.Log(2, "after");
        EXPECT_TRUE(IniFile::Load(activity).Lines("Log").back().ends_with("after")) << damage.substr(0, 30);
    }
}

}  // namespace
