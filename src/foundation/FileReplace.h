// Putting a finished file in the place of an old one, in one step.
#pragma once
#include <string>

// Whether the named file may be written (or created): false for a folder or a read-only file.
bool CanReplaceFile(const std::string& name);

// Renames `beside` to `name`, replacing it; both lie in one folder. The data is on the disk first.
bool ReplaceFileBy(const std::string& name, const std::string& beside);
