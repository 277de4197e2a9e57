// A type library as text: every enumeration, interface, member and class with all that callers bind to.
#pragma once
#include <string>

std::string ListTypeLibrary(const wchar_t* file);
