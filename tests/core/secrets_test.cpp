// Passwords in log and activity files.
#include "foundation/Secrets.h"

#include "foundation/Base64.h"
#include "frame/VrmBase.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

TEST(Secrets, AreHiddenInEveryForm) {
    Secrets secrets;
    secrets.Set({"p@ss word", "", "abc", "pass", "passage", "50%25"});
    struct Row {
        const char* text;
        const char* shown;
    };
    for (const Row& row : {
             Row{"LOGI p@ss word", "LOGI ****"},
             Row{"/send?p=p%40ss%20word&q=p%40ss+word&r=%70@ss%20wor%64", "/send?p=****&q=****&r=****"},
             Row{"AUTH cEBzcyB3b3Jk", "AUTH ****"},
             Row{"a passage, a pass and a passpass", "a ****, a **** and a ********"},
             Row{"50%25 is 50%2525", "**** is ****"},
             Row{"p@ss wor", "p@ss wor"},
             Row{"p%4", "p%4"},
             Row{"abc", "abc"},  // too short to be told from a word
             Row{"", ""},
         }) {
        std::string text = row.text;
        secrets.Mask(text);
        EXPECT_EQ(text, row.shown);
    }
    for (const auto& [password, shown] :
         {std::pair{"abc", "****"}, {"pass", "****"}, {"ab", "ab"}, {"", ""}}) {
        EXPECT_EQ(secrets.Shown(password), shown);
    }
}

TEST(Secrets, AreHiddenInLongerBase64AndInUtf8) {
    Secrets secrets;
    secrets.Set({"secret word", "p\xE4ssw\xF6rd"});
    for (const char* name : {"", "m", "me", "mee", "meee"}) {
        std::string text = "Basic " + base64::Encode(name + std::string(":secret word"));
        secrets.Mask(text);
        EXPECT_NE(text.find("****"), std::string::npos) << name;
        EXPECT_LE(text.size(), std::string("Basic ****1234567890").size()) << text;
    }
    std::string text = "p=p%C3%A4ssw%C3%B6rd p\xC3\xA4ssw\xC3\xB6rd p\xE4ssw\xF6rd p%E4ssw%F6rd";
    secrets.Mask(text);
    EXPECT_EQ(text, "p=**** **** **** ****");
}

TEST(Secrets, PinCommandsShowNoDigits) {
    struct Row {
        const char* text;
        const char* shown;
    };
    for (const Row& row : {
             Row{"AT+CPIN=\"1234\"", "AT+CPIN=\"****\""},
             Row{"at+cpin=12345678,1234", "at+cpin=********,****"},
             Row{"AT+CMEE=1;+CPIN = 1234", "AT+CMEE=*;+CPIN = ****"},
             Row{"AT+CPWD=\"SC\",\"1234\",\"5678\"", "AT+CPWD=\"SC\",\"****\",\"****\""},
             Row{"AT+CLCK=\"SC\",1,\"1234\"", "AT+CLCK=\"SC\",*,\"****\""},
             Row{"17\r\nAT+CPIN=1234\r\r\n+CME ERROR: 16", "17\r\nAT+CPIN=****\r\r\n+CME ERROR: 16"},
             Row{"at + cpin = 4711", "at + cpin = ****"},
             Row{"ATD**04*4711*1234*1234#", "ATD*******************#"},
             Row{"ATD*99#", "ATD*99#"},
             Row{"+CPIN: SIM PIN2", "+CPIN: SIM PIN2"},
             Row{"+CLCK: 1", "+CLCK: 1"},
             Row{"AT+CMGS=14", "AT+CMGS=14"},
             Row{"", ""},
         }) {
        EXPECT_EQ(MaskPin(row.text), row.shown);
    }
}

TEST(Secrets, StayOutOfBothFilesWhenTheSettingSaysSo) {
    const TemporaryFolder folder;
    VirtualClock clock;
    CVrmBase base("CTest", clock);
    base.SetLogFile(folder.File("log"));
    base.SetActivityFile(folder.File("activity"));
    struct Row {
        const char* settings;
        bool shows;
    };
    for (const Row& row :
         {Row{"", true}, Row{"MaskPasswords=0", true}, Row{"Debug=1;maskpasswords=1", false}}) {
        base.SetAdvancedSettings(row.settings);
        base.GuardPasswords({"22:13"});  // as in the time of the line
        TemporaryFolder::Write(folder.File("log"), {});
        base.Log(logmask::kLog | logmask::kActivity, "Password=[%s]", "22:13");
        base.LogSized(logmask::kVerbatim, 4096, "LOGI %s", "22:13");
        const std::string shown = row.shows ? "22:13" : "****";
        EXPECT_EQ(TemporaryFolder::Read(folder.File("log")),
                  "[22:13:20]  Password=[" + shown + "]\n[22:13:20]  LOGI " + shown + "\n");
        EXPECT_TRUE(TemporaryFolder::Read(folder.File("activity"))
                        .ends_with("[22:13:20]  Password=[" + shown + "]\n"));
        EXPECT_EQ(base.Shown("22:13"), shown);
    }
}

}  // namespace
