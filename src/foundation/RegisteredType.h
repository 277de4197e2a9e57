// The media types that the machine has registered for file name extensions.
#pragma once
#include <string>

// Of an extension without its dot; empty when there is none.
std::string RegisteredType(const std::string& extension);
