// The values in the answer to a test command, ITU-T V.250 section 5.7.3: `+CNMI: (0-2),(0,1)`,
// `+CPMS: ("SM","ME"),("SM")`, `+CGDCONT: (1-16),"IP",,(0,1)`.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

// One of several values that commas separate.
struct AtField {
    std::string_view text;  // without its brackets, quotes and outer blanks; may be empty
    bool isList = false;    // it stood in brackets: its text holds fields again
    bool operator==(const AtField&) const = default;
};

// The fields of a text; what stands in brackets or quotes is one field. They refer to the text.
std::vector<AtField> AtFields(std::string_view text);

// A number or a range of numbers, both ends included; empty when `last` is below `first`.
struct AtRange {
    std::int32_t first = 0, last = -1;
    bool operator==(const AtRange&) const = default;
};

// What "3" or "0-2" stands for; a missing end is 0. Empty for a text without digits and dash.
AtRange RangeOf(std::string_view value);

// What stands behind the command's name in "+CNMI: ..."; without a colon all of it.
std::string_view AnswerOf(std::string_view reply);

// What one list of "+CNMI: (0-2),(0,1),..." offers: bit n for the value n (0 to 3). A list is one range or
// single values; one that mixes them is read as a range from its beginning to its end.
unsigned ParseCnmiList(std::string_view list);
