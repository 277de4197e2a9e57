// A type library as text: every enumeration, interface, member and class with all that callers bind to.
#pragma once
#include <string>

// Without the help texts: what is in it never changes.
std::string ListTypeLibrary(const wchar_t* file);

// With names of parameters and help texts, one row a line and fields between tabs, as the pages of
// docs/reference are made from (scripts/reference.py tells the fields).
std::string ListReference(const wchar_t* file);
