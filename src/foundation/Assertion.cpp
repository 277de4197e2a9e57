#include "foundation/Assertion.h"

#include "foundation/Clock.h"

void Assert(bool condition, const char* file, long line) {
    if (condition) return;
    Clock& clock = SystemClock();
    WriteAssertionReport(ClockPrefix(clock.ToLocal(clock.Now())) + " QUORVANE ASSERTION FAILURE, FILE: [" +
                         file + "]; LINE: " + std::to_string(line));
}
