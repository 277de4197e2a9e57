// Internal consistency checks: a failed one is reported to a fixed file and the event log, and the program
// goes on.
#pragma once
#include <string>

// Reports when `condition` is false; `file` and `line` name the check.
void Assert(bool condition, const char* file, long line);

// The edge: appends a line to c:\qvdebug\assert.txt if that can be opened, and reports an error event
// (source "SceCli", event id 1704).
void WriteAssertionReport(const std::string& text);
