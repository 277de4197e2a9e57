#include "foundation/Assertion.h"
#include "foundation/TextFile.h"

#include <windows.h>

void WriteAssertionReport(const std::string& text) {
    constexpr DWORD kEventId = 1704;
    AppendTextFile("c:\\qvdebug\\assert.txt", text + "\n");
    HANDLE source = ::RegisterEventSourceA(nullptr, "SceCli");
    if (source == nullptr) return;
    const char* strings[] = {text.c_str()};
    ::ReportEventA(source, EVENTLOG_ERROR_TYPE, 0, kEventId, nullptr, 1, 0, strings, nullptr);
    ::DeregisterEventSource(source);
}
