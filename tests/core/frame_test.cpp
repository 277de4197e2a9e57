// Result codes, log and activity files, advanced settings.
#include "foundation/Assertion.h"
#include "foundation/ErrorTexts.h"
#include "foundation/IniFile.h"
#include "frame/VrmBase.h"
#include "sms/SmsConstants.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

constexpr const char* kPrefix = "[22:13:20]  ";  // the virtual clock's start

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

TEST(AdvancedSettings, FindsKeywordsAndNumbers) {
    struct Row {
        const char* settings;
        std::int32_t value;
    };
    for (const Row& row : {Row{"", 10}, Row{"Other=3", 10}, Row{"SmppWindowSize=25", 25},
                           Row{"ForcePduMode;smppwindowsize = 7;X=9", 7}, Row{"SmppWindowSize 12,8", 12},
                           Row{"SmppWindowSize", 0}, Row{"SmppWindowSize=;5", 0},
                           Row{"SmppWindowSize=-4", -4}, Row{"SmppWindowSize=99999999999", INT32_MAX}}) {
        CVrmBase base("CTest");
        base.SetAdvancedSettings(row.settings);
        EXPECT_EQ(base.AdvancedSetting("SmppWindowSize", 10), row.value) << row.settings;
    }
    CVrmBase base("CTest");
    base.SetAdvancedSettings("a;FORCEPDUMODE;b");
    EXPECT_TRUE(base.HasAdvancedSetting("ForcePduMode"));
    EXPECT_FALSE(base.HasAdvancedSetting("ForceTextMode"));
}

TEST(Timer, SurvivesTheWrapOfTheTickCounter) {
    VirtualClock clock(0, 0xFFFFFF00);
    const Timer timer(clock, 1000);
    clock.Sleep(999);
    EXPECT_FALSE(timer.Expired());
    EXPECT_EQ(timer.Remaining(), 1U);
    clock.Sleep(1);
    EXPECT_TRUE(timer.Expired());
    const Timer forever(clock, Timer::kForever);
    clock.Sleep(0x7FFFFFFF);
    EXPECT_FALSE(forever.Expired());
}

TEST(TimeText, IsATwelveHourClock) {
    VirtualClock clock;
    struct Row {
        std::int64_t seconds;
        const char* text;
    };
    for (const Row& row : {Row{0, "n/a"}, Row{-1, "n/a"}, Row{1794750310, "11/15/2026 01:45:10 PM"},
                           Row{1794700800, "11/15/2026 12:00:00 AM"},
                           Row{1794744000, "11/15/2026 12:00:00 PM"}, Row{1, "01/01/1970 12:00:01 AM"}}) {
        EXPECT_EQ(TimeText(clock, row.seconds), row.text);
    }
}

TEST(SystemClockCalendar, AgreesWithTheCLibrary) {
    const std::string old = getenv("TZ") != nullptr ? getenv("TZ") : "";
    for (const char* zone : {"UTC", "Europe/Amsterdam", "Asia/Kolkata", "America/St_Johns"}) {
        setenv("TZ", zone, 1);
        tzset();
        for (std::int64_t t = 946'684'800; t < 2'000'000'000; t += 9'876'543) {
            const auto seconds = static_cast<std::time_t>(t);
            std::tm local{};
            localtime_r(&seconds, &local);
            const CalendarTime mine = SystemClock().ToLocal(t);
            EXPECT_EQ(std::tie(mine.year, mine.month, mine.day, mine.hour, mine.minute, mine.second),
                      std::make_tuple(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                                      local.tm_min, local.tm_sec));
            const std::time_t now = std::time(nullptr);
            std::tm present{};
            localtime_r(&now, &present);
            local.tm_isdst = present.tm_isdst;
            EXPECT_EQ(SystemClock().FromLocal(mine), std::mktime(&local)) << zone << " " << t;
        }
    }
    old.empty() ? unsetenv("TZ") : setenv("TZ", old.c_str(), 1);
    tzset();
}

}  // namespace
