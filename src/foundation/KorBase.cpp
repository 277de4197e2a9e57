#include "foundation/KorBase.h"

#include "foundation/Assertion.h"
#include "foundation/IniFile.h"
#include "foundation/Text.h"
#include "foundation/TextFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>

namespace {

constexpr std::size_t kBufferSize = 65536;
constexpr std::size_t kSizedSlack = 2047;
constexpr std::size_t kSmallestHint = 9;
constexpr std::size_t kActivityLimit = 1023;
constexpr std::size_t kActivityCut = 1020;
constexpr std::size_t kActivityEntries = 100;
constexpr int kSaveAttempts = 3;
constexpr std::uint32_t kSavePause = 10;

void MakeLineBreaksVisible(std::string& entry) {
    entry.resize(entry.find_last_not_of("\r\n") + 1);
    ReplaceAll(entry, "\r\n", " <CRLF> ");
    ReplaceAll(entry, "\r", " <CR> ");
    ReplaceAll(entry, "\n", " <LF> ");
}

}  // namespace

CKorBase::CKorBase(std::string className, Clock& clock) : className_(std::move(className)), clock_(&clock) {}

void CKorBase::SetLogFile(const std::string& name) {
    const std::scoped_lock guard(lock_);
    logFile_ = name;
    isLogging_ = !logFile_.empty() || !activityFile_.empty();
}

std::string CKorBase::LogFile() const {
    const std::scoped_lock guard(lock_);
    return logFile_;
}

void CKorBase::SetActivityFile(const std::string& name) {
    const std::scoped_lock guard(lock_);
    activityFile_ = name;
    isLogging_ = !logFile_.empty() || !activityFile_.empty();
    if (name.empty()) return;
    RemoveFile(name);
    IniFile fresh;
    fresh.SetText("Init", "Initialized", "1");
    fresh.SetText("Init", "NextEntry", "0");
    (void)fresh.Save(name);
}

std::string CKorBase::ActivityFile() const {
    const std::scoped_lock guard(lock_);
    return activityFile_;
}

void CKorBase::HidePasswords(std::vector<std::string> passwords) {
    const std::scoped_lock guard(lock_);
    secrets_.Set(std::move(passwords));
}

std::string CKorBase::Shown(const std::string& password) const {
    const std::scoped_lock guard(lock_);
    return secrets_.Shown(password);
}

void CKorBase::Log(unsigned mask, const char* format, ...) {
    if (!IsLogging() || mask == 0 || *format == '\0') return;
    const std::scoped_lock guard(lock_);
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(kBufferSize);
    va_list arguments;
    va_start(arguments, format);
    Write(mask, buffer_.get(), kBufferSize, format, arguments);
    va_end(arguments);
}

void CKorBase::LogSized(unsigned mask, std::size_t sizeHint, const char* format, ...) {
    Assert(sizeHint >= kSmallestHint, "KorBase", __LINE__);
    if (!IsLogging() || mask == 0 || *format == '\0') return;
    const std::scoped_lock guard(lock_);
    const std::size_t size = sizeHint + kSizedSlack;
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[size]);
    if (!buffer) return;
    va_list arguments;
    va_start(arguments, format);
    Write(mask, buffer.get(), size, format, arguments);
    va_end(arguments);
}

void CKorBase::Write(unsigned mask, char* buffer, std::size_t size, const char* format, va_list arguments) {
    const std::string prefix = ClockPrefix(clock_->ToLocal(clock_->Now())) + "  ";
    std::copy(prefix.begin(), prefix.end(), buffer);
    const int length = std::vsnprintf(buffer + prefix.size(), size - prefix.size(), format, arguments);
    if (length < 0) return;
    std::string entry(buffer, std::min(prefix.size() + static_cast<std::size_t>(length), size - 1));
    secrets_.Mask(entry, prefix.size());
    if ((mask & logmask::kVerbatim) == 0) MakeLineBreaksVisible(entry);
    if (!logFile_.empty() && (mask & (logmask::kLog | logmask::kVerbatim)) != 0) {
        AppendTextFile(logFile_, entry + "\n");
    }
    if (!activityFile_.empty() && (mask & logmask::kActivity) != 0) AppendToActivity(std::move(entry));
}

void CKorBase::AppendToActivity(std::string entry) {
    if (entry.size() > kActivityLimit) entry.replace(kActivityCut, std::string::npos, "...");
    entry.resize(
        std::min(entry.size(), entry.find_first_of("\r\n")));  // a stored line ends at its line break
    IniFile file = IniFile::Load(activityFile_);
    const std::uint32_t number = file.Number("Init", "NextEntry");
    std::vector<std::string> entries = file.Lines("Log");
    std::array<char, 16> key{};
    std::snprintf(key.data(), key.size(), "%08X|", static_cast<unsigned>(number));
    entries.push_back(key.data() + entry);
    if (entries.size() > kActivityEntries) {
        entries.erase(entries.begin(), entries.end() - static_cast<std::ptrdiff_t>(kActivityEntries));
    }
    file.SetLines("Log", std::move(entries));
    file.SetText("Init", "NextEntry", std::to_string(number + 1));
    for (int attempt = 1; !file.Save(activityFile_) && attempt < kSaveAttempts; ++attempt) {
        clock_->Sleep(kSavePause);
    }
}
