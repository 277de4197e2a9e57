// The media type of a file by its name.
#pragma once
#include <string>
#include <string_view>

// From our own table (in which upper and lower case differ), then from what the machine has registered, then
// "application/octet-stream"; empty for a name without a dot.
std::string ContentTypeOfFile(std::string_view name);

// What stands behind the last backslash.
std::string_view BareFileName(std::string_view path);
