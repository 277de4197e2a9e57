// The base of everything that can trace its work: a log file and an activity file, named by the caller.
#pragma once
#include "foundation/Clock.h"
#include "foundation/Secrets.h"

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Where a logging call writes; bits combine.
namespace logmask {
inline constexpr unsigned kLog = 1;       // log file, line breaks made visible
inline constexpr unsigned kActivity = 2;  // activity file
inline constexpr unsigned kVerbatim = 4;  // log file, as it stands
}  // namespace logmask

class CKorBase {
  public:
    explicit CKorBase(std::string className, Clock& clock = SystemClock());
    CKorBase(const CKorBase&) = delete;
    CKorBase& operator=(const CKorBase&) = delete;
    virtual ~CKorBase() = default;

    const std::string& ClassName() const { return className_; }
    Clock& GetClock() const { return *clock_; }

    // Names the log file; nothing is written. Empty = no log.
    virtual void SetLogFile(const std::string& name);
    std::string LogFile() const;

    // Names the activity file and starts it afresh. Empty = none.
    virtual void SetActivityFile(const std::string& name);
    std::string ActivityFile() const;

    // No entry shows these passwords from now on: "****" stands for each. Without any, entries are written as
    // they are.
    virtual void HidePasswords(std::vector<std::string> passwords);
    // A password as a line or a dump may show it.
    std::string Shown(const std::string& password) const;

    // True when a log or activity file is named, so that costly entries need not be built in vain.
    bool IsLogging() const { return isLogging_; }

    // Writes one entry, `printf` style. A file that cannot be opened is skipped; nothing is reported.
    void Log(unsigned mask, const char* format, ...) __attribute__((format(printf, 3, 4)));

    // As Log, for entries that may exceed the 64 KiB buffer: `sizeHint` is the payload's length + 2048.
    void LogSized(unsigned mask, std::size_t sizeHint, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

  private:
    void Write(unsigned mask, char* buffer, std::size_t size, const char* format, va_list arguments);
    void AppendToActivity(std::string entry);

    std::string className_;
    Clock* clock_;
    std::atomic<bool> isLogging_ = false;  // a file is named: entries that go nowhere take no lock
    mutable std::mutex lock_;
    std::string logFile_;
    std::string activityFile_;
    Secrets secrets_;
    std::unique_ptr<char[]> buffer_;
};
