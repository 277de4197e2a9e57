// Keywords and numbers in the advanced settings.
#include "frame/VrmBase.h"

#include <gtest/gtest.h>

namespace {

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

}  // namespace
