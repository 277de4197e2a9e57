// The releases of 3GPP TS 23.140 and of its MM7 schema, by the constants of MmsConstants.
#pragma once
#include <cstdint>
#include <string>

namespace mms {

// "5.4.0" for asMMS_VERSION_5_4_0; "5.2.0" for a number that is none of those.
std::string VersionText(std::int32_t version);

// The namespace of an asMMS_SCHEMA_ constant; that of REL-5-MM7-1-2 for a number that is none of those.
std::string SchemaNamespace(std::int32_t schema);

}  // namespace mms
