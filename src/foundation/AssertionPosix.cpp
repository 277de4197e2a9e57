#include <cstdio>

#include "foundation/Assertion.h"

void WriteAssertionReport(const std::string& text) { (void)std::fprintf(stderr, "%s\n", text.c_str()); }
