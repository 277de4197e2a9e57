// Prints the interface listing: list_typelib.exe NeltCtrlx64.dll > tests/golden/interface.txt
#include "Com.h"
#include "TypeLibraryListing.h"

#include <cstdio>

int main(int argc, char** argv) {
    const ComApartment apartment;
    const std::string file = argc > 1 ? argv[1] : "NeltCtrlx64.dll";
    std::fputs(ListTypeLibrary(std::wstring(file.begin(), file.end()).c_str()).c_str(), stdout);
    return 0;
}
