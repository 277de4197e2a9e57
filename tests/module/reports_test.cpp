// Report files through real COM, where another program has them open.
#include "Com.h"

#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace {

class ReportFile : public testing::Test {
  protected:
    ReportFile() {
        wchar_t folder[MAX_PATH];
        ::GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
        ::GetTempFileNameW(folder, L"rep", 0, name_);
    }
    ~ReportFile() override { ::DeleteFileW(name_); }

    void Write(const std::string& text) const {
        const HANDLE file = Open(GENERIC_WRITE, 0, CREATE_ALWAYS);
        DWORD written = 0;
        ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        ::CloseHandle(file);
    }
    std::string Read() const {
        const HANDLE file = Open(GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
        std::string text(1000, '\0');
        DWORD size = 0;
        ::ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &size, nullptr);
        ::CloseHandle(file);
        text.resize(size);
        return text;
    }
    HANDLE Open(DWORD access, DWORD shared, DWORD how) const {
        return ::CreateFileW(name_, access, shared, nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    LONG Save() {
        reports_->SaveReports(Bstr(name_));
        LONG code = -1;
        reports_->get_LastError(&code);
        return code;
    }

    wchar_t name_[MAX_PATH] = {};
    Com<ISmsProtocolGsm> reports_ = Create<ISmsProtocolGsm>(L"Quorvane.SmsProtocolGsm");
};

TEST_F(ReportFile, IsSavedWhileAReaderHoldsIt) {
    const std::string text = "17;;;;2;;1700000000;;0;;0;;1699999000";
    Write(text);
    ASSERT_EQ(reports_->LoadReports(Bstr(name_)), S_OK);
    struct Row {
        DWORD shared;  // what the reader leaves to others
        LONG code;
        std::string left;
    };
    for (const Row& row : {Row{FILE_SHARE_READ | FILE_SHARE_WRITE, 0, text},  // nobody may replace the file
                           Row{FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, 0, text},
                           Row{FILE_SHARE_READ, 33070, "old"}}) {
        Write("old");
        const HANDLE reader = Open(GENERIC_READ, row.shared, OPEN_EXISTING);
        ASSERT_NE(reader, INVALID_HANDLE_VALUE);
        EXPECT_EQ(Save(), row.code) << row.shared;
        ::CloseHandle(reader);
        EXPECT_EQ(Read(), row.left) << row.shared;
    }
    EXPECT_EQ(Save(), 0);
    EXPECT_EQ(Read(), text);
}

}  // namespace
