#include "foundation/Assertion.h"

#include <cstdio>

void WriteAssertionReport(const std::string& text) { (void)std::fprintf(stderr, "%s\n", text.c_str()); }
