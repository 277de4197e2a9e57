#include "mms/MmsVersions.h"

#include "mms/MmsConstants.h"

namespace {

// "5.2.0" and so on: the constants count the minor versions of a release up from a first one.
struct Releases {
    std::int32_t from, to;  // constants
    const char* major;
    std::int32_t firstMinor;
    const char* end;
};

// Empty for a constant of none of the rows.
template <std::size_t N>
std::string TextOf(const Releases (&rows)[N], std::int32_t constant) {
    for (const Releases& row : rows) {
        if (constant < row.from || constant > row.to) continue;
        return row.major + std::to_string(constant - row.from + row.firstMinor) + row.end;
    }
    return {};
}

}  // namespace

std::string mms::VersionText(std::int32_t version) {
    constexpr Releases kVersions[] = {{asMMS_VERSION_5_2_0, asMMS_VERSION_5_11_0, "5.", 2, ".0"},
                                      {asMMS_VERSION_6_0_0, asMMS_VERSION_6_8_0, "6.", 0, ".0"}};
    std::string text = TextOf(kVersions, version);
    return text.empty() ? "5.2.0" : text;
}

std::string mms::SchemaNamespace(std::int32_t schema) {
    constexpr Releases kSchemas[] = {
        {asMMS_SCHEMA_REL5_MM7_1_0, asMMS_SCHEMA_REL5_MM7_1_5, "REL-5-MM7-1-", 0, ""},
        {asMMS_SCHEMA_REL6_MM7_1_0, asMMS_SCHEMA_REL6_MM7_1_4, "REL-6-MM7-1-", 0, ""}};
    const std::string name = TextOf(kSchemas, schema);
    return "http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/" +
           (name.empty() ? TextOf(kSchemas, asMMS_SCHEMA_REL5_MM7_1_2) : name);
}
