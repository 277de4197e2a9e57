// Prints what callers bind to: list_typelib.exe NeltCtrlx64.dll > tests/golden/interface.txt
// With help texts, for the reference: list_typelib.exe NeltCtrlx64.dll reference > tests/golden/reference.tsv
#include "Com.h"
#include "TypeLibraryListing.h"

#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
    const ComApartment apartment;
    const std::string file = argc > 1 ? argv[1] : "NeltCtrlx64.dll";
    const auto list = argc > 2 && argv[2] == std::string_view("reference") ? ListReference : ListTypeLibrary;
    std::fputs(list(std::wstring(file.begin(), file.end()).c_str()).c_str(), stdout);
    return 0;
}
